#include "tools/host/service_commands.h"

#include "tools/host/catalogue_command.h"
#include "tools/host/command_options.h"
#include "tools/host/configure_command.h"
#include "tools/host/diff_command.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tovik_host {

namespace {

const char catalogue_text[] =
    "Logs in with the driver's own client and prints what the service offers to the account:\n"
    "a tree on a terminal, a table elsewhere. A configuration can be made from the JSON form,\n"
    "and two of them can be compared.\n"
    "The password comes from --password-file, from the variable that --password-env names,\n"
    "from the configuration, or from the variable TOVIK_PASSWORD; else it is asked for.\n"
    "\n"
    "Example:\n"
    "  tovik-host catalogue --url https://cloud.example --project plant \\\n"
    "      --email operator@example.com --json > plant.catalogue.json";

const char configure_text[] =
    "Makes a configuration for watch, read and write from the service's catalogue or a saved\n"
    "one. A pattern is GROUP/ITEM, or the name of an item, in which * stands for any\n"
    "characters, ? for one, [abc] for one of several ([[] for a bracket); or an id as it is.\n"
    "What is the whole name of an item stands for it alone. Items are called Group.Item; a name\n"
    "that is taken gets a number. Instead of the password the file says where to find it.\n"
    "Exit codes: as of the other commands; 1 also if nothing was chosen.\n"
    "\n"
    "Examples:\n"
    "  tovik-host configure 'Boiler/*' --exclude '*test*' --url https://cloud.example \\\n"
    "      --project plant --email operator@example.com --output plant.json\n"
    "  tovik-host configure --catalogue plant.catalogue.json --type Bit --output bits.json\n"
    "  tovik-host configure --config plant.json --interactive --output chosen.json";

const char diff_text[] =
    "Compares two saved catalogues, or a configuration with a catalogue; without NEW with the\n"
    "service's catalogue of now. Items are the same if they have the same id. With a\n"
    "configuration only its items count: gone, renamed, of another type.\n"
    "\n"
    "Exit codes, as of diff: 0 no difference; 1 differences; 2 trouble, also with the service.\n"
    "\n"
    "Examples:\n"
    "  tovik-host diff plant.catalogue.json\n"
    "  tovik-host diff plant.json new.catalogue.json --json";

/// What the options are parsed into.
struct ParsedService
{
    std::string config;
    std::string url;
    std::string url_file;
    std::string project;
    std::string email;
    std::string password_file;
    std::string password_env;
    double timeout = 10;
    bool quiet = false;
    bool verbose = false;
    std::string log;

    service::ServiceOptions options() const
    {
        service::ServiceOptions options;
        options.account = {text(config), text(url),           text(url_file),    text(project),
                           text(email),  text(password_file), text(password_env)};
        options.timeout = timeout;
        options.quiet = quiet;
        options.verbose = verbose;
        options.log = text(log);
        return options;
    }
};

void addText(CLI::App* command, const char* name, std::string& value, const char* description,
             const char* type_name, const char* group)
{
    command->add_option(name, value, description)->type_name(type_name)->group(group);
}

void addServiceOptions(CLI::App* command, ParsedService& parsed)
{
    const char account[] = "Account";
    const char log[] = "Client's log";
    addText(command, "--config", parsed.config, "Configuration to take the account from", "FILE",
            account);
    addText(command, "--url", parsed.url, "Address of the service", "URL", account);
    addText(command, "--url-file", parsed.url_file, "File whose first line is the address", "FILE",
            account);
    command->get_option("--url-file")->excludes("--url");
    addText(command, "--project", parsed.project, "Project to log in to", "NAME", account);
    addText(command, "--email", parsed.email, "Account to log in with", "ADDRESS", account);
    addText(command, "--password-file", parsed.password_file,
            "File whose first line is the password", "FILE", account);
    addText(command, "--password-env", parsed.password_env,
            "Variable of the environment that holds it", "NAME", account);
    command->get_option("--password-env")->excludes("--password-file");
    command->add_option("--timeout", parsed.timeout, "Longest wait for one answer of the service")
        ->type_name("SECONDS")
        ->check(secondsWithin(0.1, 86400))
        ->capture_default_str();
    command->add_flag("--quiet", parsed.quiet, "No progress");
    addText(command, "--log", parsed.log, "Append the client's debug lines to a file", "FILE", log);
    command->add_flag("--verbose", parsed.verbose, "Client's debug lines to the standard error")
        ->group(log);
}

} // namespace

void addCatalogue(CLI::App& app, std::function<int()>& run)
{
    struct Options : ParsedService
    {
        bool tree = false;
        bool table = false;
        bool json = false;
    };
    const auto parsed = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("catalogue", "Print the groups and items that a service offers");
    command->footer(catalogue_text);
    addServiceOptions(command, *parsed);
    CLI::Option* tree = command->add_flag("--tree", parsed->tree, "As a tree");
    CLI::Option* table = command->add_flag("--table", parsed->table, "As a table")->excludes(tree);
    command->add_flag("--json", parsed->json, "As JSON, for configure and diff")
        ->excludes(tree)
        ->excludes(table);
    command->callback([parsed, &run] {
        CatalogueForm form = CatalogueForm::automatic;
        if (parsed->tree)
            form = CatalogueForm::tree;
        else if (parsed->table)
            form = CatalogueForm::table;
        else if (parsed->json)
            form = CatalogueForm::json;
        const service::ServiceOptions service = parsed->options();
        run = [service, form] { return runCatalogue(service, form); };
    });
}

void addConfigure(CLI::App& app, std::function<int()>& run)
{
    struct Options : ParsedService
    {
        std::string catalogue;
        std::vector<std::string> patterns;
        std::vector<std::string> excluded;
        std::vector<std::string> types;
        bool interactive = false;
        std::string output;
        bool force = false;
        bool with_password = false;
    };
    const auto parsed = std::make_shared<Options>();
    CLI::App* command =
        app.add_subcommand("configure", "Make a configuration from a service's catalogue");
    command->footer(configure_text);
    command->add_option("PATTERN", parsed->patterns, "Items to choose, such as 'Boiler/*'")
        ->type_name("");
    const auto one_at_a_time = [command](const char* name, std::vector<std::string>& list,
                                         const char* description, const char* type_name) {
        command->add_option(name, list, description)->type_name(type_name)->allow_extra_args(false);
    };
    one_at_a_time("--exclude", parsed->excluded, "Items to leave out; repeatable", "PATTERN");
    one_at_a_time("--type", parsed->types, "Only items of this type; repeatable", "TYPE");
    command->add_flag("--interactive", parsed->interactive, "Choose among them in a dialogue");
    command
        ->add_option("--catalogue", parsed->catalogue,
                     "Saved catalogue (catalogue --json), instead of asking the service")
        ->type_name("FILE");
    command->add_option("--output", parsed->output, "File to write (default: standard output)")
        ->type_name("FILE");
    command->add_flag("--force", parsed->force, "Replace an existing file");
    command->add_flag("--with-password", parsed->with_password,
                      "Put the password into the configuration, as plain text");
    addServiceOptions(command, *parsed);
    command->callback([parsed, &run] {
        ConfigureOptions options;
        options.catalogue = text(parsed->catalogue);
        options.filter = {texts(parsed->patterns), texts(parsed->excluded), texts(parsed->types)};
        options.interactive = parsed->interactive;
        options.output = text(parsed->output);
        options.force = parsed->force;
        options.with_password = parsed->with_password;
        const service::ServiceOptions service = parsed->options();
        run = [service, options] { return runConfigure(service, options); };
    });
}

void addDiff(CLI::App& app, std::function<int()>& run)
{
    struct Options : ParsedService
    {
        std::string before;
        std::string after;
        std::vector<std::string> ignored;
        bool json = false;
    };
    const auto parsed = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("diff", "Show what has changed in a catalogue");
    command->footer(diff_text);
    command->add_option("OLD", parsed->before, "Saved catalogue, or a configuration")
        ->type_name("")
        ->required();
    command->add_option("NEW", parsed->after, "The same; without it the service is asked")
        ->type_name("");
    command->add_option("--ignore", parsed->ignored, "Differences that do not count; repeatable")
        ->type_name("KIND")
        ->allow_extra_args(false)
        ->check(CLI::IsMember(std::set<std::string>{"gone", "added", "renamed", "type", "moved",
                                                    "length", "group-renamed", "access"}));
    command->add_flag("--json", parsed->json, "As JSON");
    addServiceOptions(command, *parsed);
    command->callback([parsed, &run] {
        const DiffOptions options = {text(parsed->before), text(parsed->after),
                                     texts(parsed->ignored), parsed->json};
        const service::ServiceOptions service = parsed->options();
        run = [service, options] { return runDiff(service, options); };
    });
}

} // namespace tovik_host
