#include "tools/host/check/check.h"
#include "tools/host/commands.h"
#include "tools/host/driver/setup.h"
#include "tools/host/service/catalogue_fetch.h"
#include "tools/host/value/status_text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iomanip>
#include <limits>
#include <sstream>
#include <type_traits>

namespace tovik_host {

namespace {

const char link_group[] = "Device on a link";
const char service_group[] = "Service";

/// What keepBrackets() puts before a word; nobody types it.
const char bracket_mark = '\x1f';

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

/// Says in one way what is no number, and what is beyond the limits; not-a-number is within none.
template <typename Number>
CLI::Validator numberFrom(Number low, Number high)
{
    std::ostringstream range;
    range << std::setprecision(10) << low << " to " << high;
    const std::string words = range.str();
    const auto problem = [low, high, words](const std::string& word) {
        Number number = 0;
        const bool fits =
            CLI::detail::lexical_cast(word, number) && number >= low && number <= high;
        const char* const kind = std::is_integral<Number>::value ? "\" is no whole number from "
                                                                 : "\" is no number from ";
        return fits ? std::string() : "\"" + word + kind + words;
    };
    return {problem, words};
}

CLI::Option* addNumber(CLI::App* command, const char* name, std::optional<int>& number,
                       const char* description, const char* type = "N",
                       int low = std::numeric_limits<int>::min(),
                       int high = std::numeric_limits<int>::max())
{
    return command->add_option(name, number, description)
        ->type_name(type)
        ->group(link_group)
        ->check(numberFrom(low, high));
}

QString textOf(const std::string& word)
{
    const bool is_marked = word.size() > 2 && word[0] == bracket_mark && word[1] == '[';
    return QString::fromStdString(is_marked ? word.substr(1) : word);
}

/// Completes \a common, once the line is parsed. Throws CLI::ParseError if the options do not name
/// what the command needs.
void complete(const CLI::App* command, config::CommonOptions& common, Needs needs)
{
    const bool takes_address = needs == Needs::address;
    const bool has_address = !common.url.isEmpty() || !common.url_file.isEmpty();
    if (common.config.isEmpty() && !common.link.address && !(takes_address && has_address)) {
        throw CLI::RequiredError(std::string("--config (a service and its items)") +
                                 (takes_address ? ", --url (a service)" : "") +
                                 " or --link (a device)");
    }
    common.device_options << givenOptions(command, link_group);
    common.service_options << givenOptions(command, service_group);
}

/// \param whose debug lines they are
void addLog(CLI::App* command, QString& log, bool& verbose, const char* whose)
{
    const std::string name = whose;
    const std::string group = name + "'s log";
    const std::string append = std::string("Append the ") +
                               (name == "Driver" ? "driver" : "client") +
                               "'s debug lines to a file";
    addText(command, "--log", log, append.c_str(), "FILE")->group(group);
    command->add_flag("-v,--verbose", verbose, name + "'s debug lines to the standard error")
        ->group(group);
}

void addTrace(CLI::App* command, config::CommonOptions& common)
{
    const auto set = [&common](const std::string& word) {
        common.trace = QString::fromStdString(word);
    };
    // Takes a value after "=" only: the next word may be an item.
    command
        ->add_option_function<std::string>(
            "--trace", set,
            "Every byte both ways, with times, to the standard error; --trace=FILE appends it to "
            "a file")
        ->type_name("")
        ->type_size(0);
}

} // namespace

CLI::App* addCommand(CLI::App& app, Run& run, const char* name, const char* description,
                     const char* text, const Run& what)
{
    CLI::App* const command = app.add_subcommand(name, description);
    command->footer(text);
    command->callback([=, &run] { run = what; });
    return command;
}

CLI::App* addCommand(CLI::App& app, Run& run, const char* name, const char* description,
                     const char* text, const Run& what, config::CommonOptions& common, Needs needs)
{
    CLI::App* const command = addCommand(app, run, name, description, text, what);
    command->callback([=, &run, &common] {
        complete(command, common, needs);
        run = what;
    });
    return command;
}

std::string keepBrackets(const std::string& word)
{
    return word.size() > 1 && word.front() == '[' && word.back() == ']' ? bracket_mark + word
                                                                        : word;
}

std::string withoutMark(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), bracket_mark), text.end());
    return text;
}

CLI::Option* addText(CLI::App* command, const char* name, QString& text, const char* description,
                     const char* type)
{
    const auto set = [&text](const std::string& word) { text = textOf(word); };
    return command->add_option_function<std::string>(name, set, description)->type_name(type);
}

CLI::Option* addText(CLI::App* command, const char* name, std::optional<QString>& text,
                     const char* description, const char* type)
{
    const auto set = [&text](const std::string& word) { text = textOf(word); };
    return command->add_option_function<std::string>(name, set, description)->type_name(type);
}

CLI::Option* addTexts(CLI::App* command, const char* name, QStringList& texts,
                      const char* description, const char* type)
{
    const auto set = [&texts](const std::vector<std::string>& words) {
        texts.clear();
        for (const std::string& word : words)
            texts << textOf(word);
    };
    return command->add_option_function<std::vector<std::string>>(name, set, description)
        ->type_name(type);
}

CLI::Option* addSeconds(CLI::App* command, const char* name, double& seconds,
                        const char* description, double most)
{
    return command->add_option(name, seconds, description)
        ->type_name("SECONDS")
        ->check(numberFrom(0.1, most));
}

CLI::Option* addWhole(CLI::App* command, const char* name, int& number, const char* description,
                      const char* type, int low, int high)
{
    return command->add_option(name, number, description)
        ->type_name(type)
        ->check(numberFrom(low, high));
}

CLI::Option* addTimeout(CLI::App* command, double& timeout, const char* description)
{
    return addSeconds(command, "--timeout", timeout, description)->capture_default_str();
}

void addCommon(CLI::App* command, config::CommonOptions& common)
{
    addText(command, "-c,--config", common.config,
            "Configuration file (JSON); required unless --link is given", "FILE");
    addText(command, "--library", common.library,
            "Driver library, by its path or the name of an installed one, such as modbus_drv "
            "(default: libtovik_iot.so.1 beside this program; a device needs its own)",
            "PATH");
    addLog(command, common.log, common.verbose, "Driver");
    addTrace(command, common);
}

void addWays(CLI::App* command, config::CommonOptions& common)
{
    CLI::Option* url = addText(command, "--url", common.url,
                               "Address of the service, instead of the file's", "URL")
                           ->group(service_group);
    addText(command, "--url-file", common.url_file, "File whose first line is the address", "FILE")
        ->group(service_group)
        ->excludes(url);
    addLink(command, common.link);
    config::RequestOptions& request = common.request;
    addText(command, "--type", request.type,
            "Type of the addresses: Bit, 16Bit- or 32Bit- with INT, UINT, HEX or BCD, "
            "32Bit-FLOAT, String (default 16Bit-UINT); ADDRESS=TYPE is for one of them",
            "TYPE")
        ->group(link_group);
    addNumber(command, "--length", request.length, "Bytes of a String", "BYTES", 1,
              config::limits::length);
    addNumber(command, "--elements", request.elements,
              "Values of the type, one after the other, in one request (default 1)", "N", 1,
              config::limits::elements);
    addNumber(command, "--station", request.station, "Station number of the device (default 1)",
              "N", 0, config::limits::station);
    addText(command, "--unit", common.link.unit, "Unit name of the requests (default tovik-host)",
            "NAME")
        ->group(link_group);
    const char* const driver_s = "Member of the request; its meaning is the driver's";
    addNumber(command, "--field1", request.field1, driver_s);
    addNumber(command, "--extra1", request.extra1, driver_s);
    addNumber(command, "--extra2", request.extra2, driver_s);
}

void markOfService(CLI::Option* option)
{
    option->group(service_group);
}

void markOfDevice(CLI::Option* option)
{
    option->group(link_group);
}

void addLink(CLI::App* command, config::LinkOptions& link)
{
    addText(command, "--link", link.address,
            "tcp:HOST:PORT or serial:DEVICE[,BAUD[,FRAME[,FLOW]]]; by default "
            "9600,8N1,none; FLOW is none, rtscts or xonxoff",
            "LINK")
        ->group(link_group);
    addNumber(command, "--response-timeout", link.response_timeout,
              "Longest wait for an answer (default 1000; the library's own 10 is too short for "
              "most devices)",
              "MS", 1, config::limits::response_timeout);
    addNumber(command, "--request-delay", link.request_delay,
              "Pause before each request (default 0)", "MS", 0, config::limits::request_delay);
    addNumber(command, "--retries", link.retries, "Repeats after a failed attempt (default 0)", "N",
              0, config::limits::retries);
    addNumber(command, "--link-param-a", link.link_param_a, "For the driver's own use (default 0)");
    addNumber(command, "--link-param-b", link.link_param_b,
              "For the driver's own use (default 255)");
}

QString causeOfNoConnection(terminal::Context& context, const driver::ServiceSetup& setup,
                            const config::CommonOptions& common, int status)
{
    if (value::isServiceError(status))
        return u"login refused with %1: %2"_s.arg(value::statusText(status), value::loginAdvice());
    const QString cause = check::causeOfSilence(context, setup.config.service.url, common.timeout);
    if (!cause.isEmpty())
        return cause;
    return status == 0
               ? u"the way to the service is free, but it has not answered yet; the driver waits "
                 "without a time-out: look at the service"_s
               : u"the way to the service is free, but no answer comes that the driver "
                 "understands: look at the service; --trace shows what comes"_s;
}

void explainNoConnection(terminal::Context& context, const driver::ServiceSetup& setup,
                         const config::CommonOptions& common, int status)
{
    const QString cause = causeOfNoConnection(context, setup, common, status);
    if (!context.unix_signals.endRequested())
        check::advise(context, cause, check::checkCommand(common));
}

std::optional<service::Catalogue> catalogueOf(terminal::Context& context,
                                              const config::CommonOptions& options,
                                              const config::Account& account)
{
    service::ClientOutcome failure;
    const std::optional<service::Catalogue> catalogue =
        service::fetchCatalogue(context, options, account, &failure);
    if (catalogue || context.unix_signals.endRequested())
        return catalogue;
    const QString cause = failure.isRefusal()
                              ? QString()
                              : check::causeOfSilence(context, account.url, options.timeout);
    // A check of a mere address has nothing to say on a login that was refused.
    const bool is_of_use = !options.config.isEmpty() || !failure.isRefusal();
    check::advise(context, cause, is_of_use ? check::checkCommand(options) : QString());
    return catalogue;
}

void addServiceOptions(CLI::App* command, config::CommonOptions& options)
{
    const auto of_account = [command](const char* name, QString& text, const char* description,
                                      const char* type) {
        return addText(command, name, text, description, type)->group("Account");
    };
    of_account("-c,--config", options.config, "Configuration to take the account from", "FILE");
    of_account("--url", options.url, "Address of the service", "URL");
    of_account("--url-file", options.url_file, "File whose first line is the address", "FILE")
        ->excludes("--url");
    of_account("--project", options.project, "Project to log in to", "NAME");
    of_account("--email", options.email, "Account to log in with", "ADDRESS");
    of_account("--password-file", options.password_file, "File whose first line is the password",
               "FILE");
    of_account("--password-env", options.password_env, "Variable of the environment that holds it",
               "NAME")
        ->excludes("--password-file");
    addTimeout(command, options.timeout, "Longest wait for one answer of the service");
    command->add_flag("-q,--quiet", options.quiet, "No progress");
    addLog(command, options.log, options.verbose, "Client");
}

} // namespace tovik_host
