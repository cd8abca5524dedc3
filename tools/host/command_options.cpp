#include "tools/host/command_options.h"

#include "tools/host/config/device_limits.h"

#include <cmath>

namespace tovik_host {

namespace {

const char link_group[] = "Device on a link";
const char service_group[] = "Service";
const char log_group[] = "Driver's log";

std::optional<QString> optionalText(const std::optional<std::string>& bytes)
{
    return bytes ? std::optional<QString>(text(*bytes)) : std::nullopt;
}

/// The given options of a group, as they are written.
QStringList givenOptions(const CLI::App* command, const std::string& group)
{
    QStringList names;
    for (const CLI::Option* option : command->get_options()) {
        if (option->get_group() == group && option->count() > 0)
            names << text(option->get_name());
    }
    return names;
}

} // namespace

QString text(const std::string& bytes)
{
    return QString::fromStdString(bytes);
}

QStringList texts(const std::vector<std::string>& list)
{
    QStringList result;
    for (const std::string& bytes : list)
        result << text(bytes);
    return result;
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

void addCommon(CLI::App* command, const Parsed& parsed)
{
    command
        ->add_option("--config", parsed->config,
                     "Configuration file (JSON); required unless --link is given")
        ->type_name("FILE");
    command
        ->add_option("--library", parsed->library,
                     "Driver library (default: libtovik_iot.so.1 beside this program; a device "
                     "needs its own)")
        ->type_name("PATH");
    command->add_option("--log", parsed->log, "Append the driver's debug lines to a file")
        ->type_name("FILE")
        ->group(log_group);
    command->add_flag("--verbose", parsed->verbose, "Driver's debug lines to the standard error")
        ->group(log_group);
}

void addService(CLI::App* command, const Parsed& parsed)
{
    CLI::Option* url =
        command->add_option("--url", parsed->url, "Address of the service, instead of the file's")
            ->type_name("URL")
            ->group(service_group);
    command->add_option("--url-file", parsed->url_file, "File whose first line is the address")
        ->type_name("FILE")
        ->group(service_group)
        ->excludes(url);
}

void markOfService(CLI::Option* option)
{
    option->group(service_group);
}

void addLink(CLI::App* command, const Parsed& parsed)
{
    config::LinkOptions& settings = parsed->link_settings;
    command
        ->add_option("--link", parsed->link,
                     "tcp:HOST:PORT or serial:DEVICE[,BAUD[,FRAME[,FLOW]]]; by default "
                     "9600,8N1,none; FLOW is none, rtscts or xonxoff")
        ->type_name("LINK")
        ->group(link_group);
    command
        ->add_option("--response-timeout", settings.response_timeout,
                     "Longest wait for an answer (default 1000; the library's own 10 is too short "
                     "for most devices)")
        ->type_name("MS")
        ->check(CLI::Range(1, config::limits::response_timeout))
        ->group(link_group);
    command
        ->add_option("--request-delay", settings.request_delay,
                     "Pause before each request (default 0)")
        ->type_name("MS")
        ->check(CLI::Range(0, config::limits::request_delay))
        ->group(link_group);
    command->add_option("--retries", settings.retries, "Repeats after a failed attempt (default 0)")
        ->type_name("N")
        ->check(CLI::Range(0, config::limits::retries))
        ->group(link_group);
    command
        ->add_option("--link-param-a", settings.link_param_a,
                     "For the driver's own use (default 0)")
        ->type_name("N")
        ->group(link_group);
    command
        ->add_option("--link-param-b", settings.link_param_b,
                     "For the driver's own use (default 255)")
        ->type_name("N")
        ->group(link_group);
}

void addRequest(CLI::App* command, const Parsed& parsed)
{
    config::RequestOptions& request = parsed->request;
    command
        ->add_option("--type", parsed->type,
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
    command->add_option("--unit", parsed->unit, "Unit name of the requests (default tovik-host)")
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

CLI::Option* addTimeout(CLI::App* command, const Parsed& parsed, const char* description,
                        bool of_device)
{
    CLI::Option* option = command->add_option("--timeout", parsed->timeout, description)
                              ->type_name("SECONDS")
                              ->check(secondsWithin(0.1, 86400))
                              ->capture_default_str();
    if (of_device)
        option->group(link_group);
    return option;
}

config::CommonOptions commonOptions(const CLI::App* command, const ParsedOptions& parsed)
{
    if (parsed.config.empty() && !parsed.link)
        throw CLI::RequiredError("--config (a service and its items) or --link (a device)");
    config::CommonOptions common;
    common.config = text(parsed.config);
    common.library = text(parsed.library);
    common.url = text(parsed.url);
    common.url_file = text(parsed.url_file);
    common.json = parsed.json;
    common.verbose = parsed.verbose;
    common.log = text(parsed.log);
    common.link = parsed.link_settings;
    common.link.address = optionalText(parsed.link);
    common.link.unit = optionalText(parsed.unit);
    common.request = parsed.request;
    common.request.type = optionalText(parsed.type);
    common.link_timeout = parsed.timeout;
    common.device_options = givenOptions(command, link_group);
    common.service_options = givenOptions(command, service_group);
    return common;
}

} // namespace tovik_host
