#include "tools/host/stored_commands.h"

#include "tools/host/command_options.h"
#include "tools/host/stored_convert.h"

namespace tovik_host {

namespace {

const char convert_text[] =
    "Turns the configuration record that a host stores (a QDataStream) into JSON, and JSON into\n"
    "the stream. JSON is the record with all its members, or the configuration that watch takes.\n"
    "A stream's form and version are found out as far as its bytes tell; the JSON remembers them.\n"
    "The options of the stream describe OUT if that is a stream, else IN. \"-\" is the standard\n"
    "input or output. OUT is readable for its owner only if it holds a password. IN may have up "
    "to\n"
    "4 MiB.\n"
    "\n"
    "Examples:\n"
    "  tovik-host convert panel.bin panel.json\n"
    "  tovik-host convert plant.json panel.bin --form variant --stream-version Qt_4_8\n"
    "\n"
    "Exit codes: 0 done; 1 the stream is damaged, and there is no --salvage or nothing to "
    "salvage;\n"
    "2 usage or file is wrong. OUT is then as it was.";

const char show_text[] =
    "Prints a stored configuration: account, groups, items with types and cached values; and of a\n"
    "stream its form, version and byte order. Of a damaged one it prints what can be read, and at\n"
    "which byte and member that ends; one of its texts may hold the password, and so all from "
    "host\n"
    "to password are hidden then. IN may have up to 4 MiB.\n"
    "\n"
    "Example:\n"
    "  tovik-host show panel.bin\n"
    "\n"
    "Exit codes: 0 done; 1 the stream is damaged; 2 usage or file is wrong.";

const char stream_group[] = "Stream";

/// The options as they are written.
struct StoredWords
{
    std::string input;
    std::string output;
    std::string from;
    std::string to;
    std::string form;
    std::string version;
    std::string order;
    std::string precision;
    bool force = false;
    bool salvage = false;
    bool json = false;
    bool show_password = false;
};

using Words = std::shared_ptr<StoredWords>;

/// Whether a word is the first one of two; nothing when it is not given.
std::optional<bool> choice(const std::string& word, const char* first)
{
    return word.empty() ? std::nullopt : std::optional<bool>(word == first);
}

std::string checkVersion(const std::string& word)
{
    if (versionOf(text(word)))
        return std::string();
    return QStringLiteral(
               "\"%1\" is no stream version: give a number from %2 to %3, or a release of "
               "Qt such as Qt_4_8")
        .arg(text(word))
        .arg(oldest_version)
        .arg(newestVersion())
        .toStdString();
}

void addInput(CLI::App* command, const Words& words)
{
    command->add_option("IN", words->input, "The file to read; - for the standard input")
        ->type_name("")
        ->required();
    command->add_option("--from", words->from, "What IN is: json or stream (default: looks)")
        ->type_name("KIND")
        ->check(CLI::IsMember({"json", "stream"}));
}

void addFormat(CLI::App* command, const Words& words)
{
    command
        ->add_option("--stream-version", words->version,
                     "7 to 19, or a release of Qt: 12 or Qt_4_8, Qt_5_15")
        ->type_name("VERSION")
        ->check(CLI::Validator(checkVersion, "", "stream version"))
        ->group(stream_group);
    command->add_option("--form", words->form, "record (bare) or variant (in a QVariant)")
        ->type_name("FORM")
        ->check(CLI::IsMember({"record", "variant"}))
        ->group(stream_group);
    command->add_option("--byte-order", words->order, "big (usual) or little")
        ->type_name("ORDER")
        ->check(CLI::IsMember({"big", "little"}))
        ->group(stream_group);
    command
        ->add_option("--float-precision", words->precision,
                     "double (usual) or single: size of floating numbers from version 12 on")
        ->type_name("PRECISION")
        ->check(CLI::IsMember({"double", "single"}))
        ->group(stream_group);
}

FormatHints formatOf(const StoredWords& words)
{
    FormatHints hints;
    if (!words.form.empty())
        hints.form = words.form == "variant" ? StoredForm::variant : StoredForm::record;
    if (!words.version.empty()) {
        const int version = *versionOf(text(words.version));
        hints.versions = VersionRange{version, version};
    }
    hints.big_endian = choice(words.order, "big");
    hints.single_precision = choice(words.precision, "single");
    return hints;
}

} // namespace

void addConvert(CLI::App& app, std::function<int()>& run)
{
    CLI::App* command =
        app.add_subcommand("convert", "Turn a stored configuration into JSON, and back");
    const Words words = std::make_shared<StoredWords>();
    command->footer(convert_text);
    addInput(command, words);
    command->add_option("OUT", words->output, "The file to write; - for the standard output")
        ->type_name("")
        ->required();
    command
        ->add_option("--to", words->to,
                     "What OUT is: json or stream (default: json if OUT ends with .json, or if it "
                     "is - and IN "
                     "is a stream; stream if IN is JSON)")
        ->type_name("KIND")
        ->check(CLI::IsMember({"json", "stream"}));
    command->add_flag("--force", words->force, "Replace OUT if it exists");
    command->add_flag("--salvage", words->salvage, "Of a damaged stream, write what can be read");
    addFormat(command, words);
    command->callback([words, &run] {
        const ConvertOptions options = {text(words->input),
                                        text(words->output),
                                        choice(words->from, "json"),
                                        choice(words->to, "json"),
                                        formatOf(*words),
                                        words->force,
                                        words->salvage};
        run = [options] { return runConvert(options); };
    });
}

void addShow(CLI::App& app, std::function<int()>& run)
{
    CLI::App* command = app.add_subcommand("show", "Show a stored configuration");
    const Words words = std::make_shared<StoredWords>();
    command->footer(show_text);
    addInput(command, words);
    command->add_flag("--json", words->json, "As JSON, as convert writes it, with the problems");
    command->add_flag("--show-password", words->show_password,
                      "Show the password, too, and all texts of a damaged stream");
    addFormat(command, words);
    command->callback([words, &run] {
        const ShowOptions options = {text(words->input), choice(words->from, "json"),
                                     formatOf(*words), words->json, words->show_password};
        run = [options] { return runShow(options); };
    });
}

} // namespace tovik_host
