#include "tools/host/command_options.h"

#include "tools/host/config/options.h"

#include <cmath>

namespace tovik_host {

namespace {

const char link_group[] = "Device on a link";
const char service_group[] = "Service";
const char log_group[] = "Driver's log";

/// The given options of a group, as they are written.
QStringList givenOptions(const CLI::App* command, const std::string& group)
{
    QStringList names;
    for (const CLI::Option* option : command->get_options()) {
        if (option->get_group() == group && option->count() > 0)
            names << QString::fromStdString(option->get_name());
    }
    return names;
}

} // namespace

CLI::Option* addText(CLI::App* command, const char* name, QString& text, const char* description)
{
    const auto set = [&text](const std::string& word) { text = QString::fromStdString(word); };
    return command->add_option_function<std::string>(name, set, description);
}

CLI::Option* addText(CLI::App* command, const char* name, std::optional<QString>& text,
                     const char* description)
{
    const auto set = [&text](const std::string& word) { text = QString::fromStdString(word); };
    return command->add_option_function<std::string>(name, set, description);
}

CLI::Option* addTexts(CLI::App* command, const char* name, QStringList& texts,
                      const char* description)
{
    const auto set = [&texts](const std::vector<std::string>& words) {
        texts.clear();
        for (const std::string& word : words)
            texts << QString::fromStdString(word);
    };
    return command->add_option_function<std::vector<std::string>>(name, set, description);
}

CLI::Validator secondsWithin(double low, double high)
{
    const CLI::Range range(low, high);
    // What is no number is neither below nor above a limit.
    return CLI::Validator(
        [range](std::string& value) {
            double seconds = 0;
            if (CLI::detail::lexical_cast(value, seconds) && std::isnan(seconds))
                return "Value " + value + " is no number of seconds";
            return range(value);
        },
        range.get_description());
}

void addCommon(CLI::App* command, config::CommonOptions& common)
{
    addText(command, "--config", common.config,
            "Configuration file (JSON); required unless --link is given")
        ->type_name("FILE");
    addText(command, "--library", common.library,
            "Driver library (default: libtovik_iot.so.1 beside this program; a device "
            "needs its own)")
        ->type_name("PATH");
    addText(command, "--log", common.log, "Append the driver's debug lines to a file")
        ->type_name("FILE")
        ->group(log_group);
    command->add_flag("--verbose", common.verbose, "Driver's debug lines to the standard error")
        ->group(log_group);
}

void addService(CLI::App* command, config::CommonOptions& common)
{
    CLI::Option* url =
        addText(command, "--url", common.url, "Address of the service, instead of the file's")
            ->type_name("URL")
            ->group(service_group);
    addText(command, "--url-file", common.url_file, "File whose first line is the address")
        ->type_name("FILE")
        ->group(service_group)
        ->excludes(url);
}

void markOfService(CLI::Option* option)
{
    option->group(service_group);
}

void addLink(CLI::App* command, config::LinkOptions& link)
{
    addText(command, "--link", link.address,
            "tcp:HOST:PORT or serial:DEVICE[,BAUD[,FRAME[,FLOW]]]; by default "
            "9600,8N1,none; FLOW is none, rtscts or xonxoff")
        ->type_name("LINK")
        ->group(link_group);
    command
        ->add_option("--response-timeout", link.response_timeout,
                     "Longest wait for an answer (default 1000; the library's own 10 is too short "
                     "for most devices)")
        ->type_name("MS")
        ->check(CLI::Range(1, config::limits::response_timeout))
        ->group(link_group);
    command
        ->add_option("--request-delay", link.request_delay, "Pause before each request (default 0)")
        ->type_name("MS")
        ->check(CLI::Range(0, config::limits::request_delay))
        ->group(link_group);
    command->add_option("--retries", link.retries, "Repeats after a failed attempt (default 0)")
        ->type_name("N")
        ->check(CLI::Range(0, config::limits::retries))
        ->group(link_group);
    command->add_option("--link-param-a", link.link_param_a, "For the driver's own use (default 0)")
        ->type_name("N")
        ->group(link_group);
    command
        ->add_option("--link-param-b", link.link_param_b, "For the driver's own use (default 255)")
        ->type_name("N")
        ->group(link_group);
}

void addRequest(CLI::App* command, config::CommonOptions& common)
{
    config::RequestOptions& request = common.request;
    addText(command, "--type", request.type,
            "Type of the addresses: Bit, 16Bit- or 32Bit- with INT, UINT, HEX or BCD, "
            "32Bit-FLOAT, String (default 16Bit-UINT); ADDRESS=TYPE is for one of them")
        ->type_name("TYPE")
        ->group(link_group);
    command->add_option("--length", request.length, "Bytes of a String")
        ->type_name("BYTES")
        ->check(CLI::Range(1, config::limits::length))
        ->group(link_group);
    command->add_option("--station", request.station, "Station number of the device (default 1)")
        ->type_name("N")
        ->check(CLI::Range(0, config::limits::station))
        ->group(link_group);
    addText(command, "--unit", common.link.unit, "Unit name of the requests (default tovik-host)")
        ->type_name("NAME")
        ->group(link_group);
    const auto number = [command](const char* name, std::optional<int>& value) {
        command->add_option(name, value, "Member of the request; its meaning is the driver's")
            ->type_name("N")
            ->group(link_group);
    };
    number("--field1", request.field1);
    number("--extra1", request.extra1);
    number("--extra2", request.extra2);
}

CLI::Option* addTimeout(CLI::App* command, double& timeout, const char* description, bool of_device)
{
    CLI::Option* option = command->add_option("--timeout", timeout, description)
                              ->type_name("SECONDS")
                              ->check(secondsWithin(0.1, 86400))
                              ->capture_default_str();
    if (of_device)
        option->group(link_group);
    return option;
}

void complete(const CLI::App* command, config::CommonOptions& common)
{
    if (common.config.isEmpty() && !common.link.address)
        throw CLI::RequiredError("--config (a service and its items) or --link (a device)");
    common.device_options << givenOptions(command, link_group);
    common.service_options << givenOptions(command, service_group);
}

void addServiceOptions(CLI::App* command, service::ServiceOptions& options)
{
    config::AccountOptions& account = options.account;
    const auto of_account = [command](const char* name, QString& text, const char* description,
                                      const char* type) {
        return addText(command, name, text, description)->type_name(type)->group("Account");
    };
    of_account("--config", account.config, "Configuration to take the account from", "FILE");
    of_account("--url", account.url, "Address of the service", "URL");
    of_account("--url-file", account.url_file, "File whose first line is the address", "FILE")
        ->excludes("--url");
    of_account("--project", account.project, "Project to log in to", "NAME");
    of_account("--email", account.email, "Account to log in with", "ADDRESS");
    of_account("--password-file", account.password_file, "File whose first line is the password",
               "FILE");
    of_account("--password-env", account.password_env, "Variable of the environment that holds it",
               "NAME")
        ->excludes("--password-file");
    addTimeout(command, options.timeout, "Longest wait for one answer of the service");
    command->add_flag("--quiet", options.quiet, "No progress");
    addText(command, "--log", options.log, "Append the client's debug lines to a file")
        ->type_name("FILE")
        ->group("Client's log");
    command->add_flag("--verbose", options.verbose, "Client's debug lines to the standard error")
        ->group("Client's log");
}

} // namespace tovik_host
