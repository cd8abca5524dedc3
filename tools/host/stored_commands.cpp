#include "tools/host/commands.h"
#include "tools/host/stored/commands.h"

#include <CLI/CLI.hpp>

namespace tovik_host {

namespace {

const char convert_text[] =
    R"(Turns the configuration record that a host stores (a QDataStream) into JSON, and JSON into
the stream. JSON is the record with all its members, or the configuration that watch takes.
A stream's form and version are found out as far as its bytes tell; the JSON remembers them.
The options of the stream describe OUT if that is a stream, else IN. "-" is the standard
input or output. OUT is readable for its owner only if it holds a password. IN may have up to
4 MiB.

Examples:
  tovik-host convert panel.bin panel.json
  tovik-host convert plant.json panel.bin --form variant --stream-version Qt_4_8

Exit codes: 0 done; 1 the stream is damaged, and there is no --salvage or nothing to salvage;
2 usage or file is wrong. OUT is then as it was.)";

const char show_text[] =
    R"(Prints a stored configuration: account, groups, items with types and cached values; and of a
stream its form, version and byte order. Of a damaged one it prints what can be read, and at
which byte and member that ends; one of its texts may hold the password, and so all from host
to password are hidden then. IN may have up to 4 MiB.

Example:
  tovik-host show panel.bin

Exit codes: 0 done; 1 the stream is damaged; 2 usage or file is wrong.)";

/// One of two words: whether it is \a word_of_true goes to \a choice.
void addWord(CLI::App* command, const char* name, const char* type, const char* description,
             std::vector<std::string> words, const std::string& word_of_true,
             std::optional<bool>* choice)
{
    command
        ->add_option_function<std::string>(
            name, [=](const std::string& word) { *choice = word == word_of_true; }, description)
        ->type_name(type)
        ->check(CLI::IsMember(std::move(words)));
}

std::string checkVersion(const std::string& word)
{
    if (stored::versionOf(QString::fromStdString(word)))
        return std::string();
    return "\"" + word + "\" is no stream version: give a number from " +
           std::to_string(stored::all_versions.first) + " to " +
           std::to_string(stored::all_versions.last) + ", or a release of Qt such as Qt_4_8";
}

void addInput(CLI::App* command, stored::Source& input)
{
    addText(command, "IN", input.path, "The file to read; - for the standard input")->required();
    addWord(command, "--from", "KIND", "What IN is: json or stream (default: looks)",
            {"json", "stream"}, "json", &input.is_json);
}

void addFormat(CLI::App* command, stored::Hints* format)
{
    const auto set_version = [=](const std::string& word) {
        const int version = *stored::versionOf(QString::fromStdString(word));
        format->versions = stored::Versions{version, version};
    };
    command
        ->add_option_function<std::string>("--stream-version", set_version,
                                           "1 to 19, or a release of Qt: 12 or Qt_4_8, Qt_5_15")
        ->type_name("VERSION")
        ->check(CLI::Validator(checkVersion, "", "stream version"));
    addWord(command, "--form", "FORM", "record (bare) or variant (in a QVariant)",
            {"record", "variant"}, "variant", &format->is_variant);
    addWord(command, "--byte-order", "ORDER", "big (usual) or little", {"big", "little"}, "big",
            &format->big_endian);
    addWord(command, "--float-precision", "PRECISION",
            "double (usual) or single: size of floating numbers from version 12 on",
            {"double", "single"}, "single", &format->single_precision);
    for (const char* name : {"--stream-version", "--form", "--byte-order", "--float-precision"})
        command->get_option(name)->group("Stream");
}

} // namespace

void addConvert(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<stored::Convert>();
    CLI::App* const command =
        addCommand(app, run, "convert", "Turn a stored configuration into JSON, and back",
                   convert_text, [options] { return options->run(); });
    addInput(command, options->input);
    addText(command, "OUT", options->output, "The file to write; - for the standard output")
        ->required();
    addWord(command, "--to", "KIND",
            "What OUT is: json or stream (default: json if OUT ends with .json, or if it is - and "
            "IN is a stream; stream if IN is JSON)",
            {"json", "stream"}, "json", &options->to_json);
    command->add_flag("--force", options->force, "Replace OUT if it exists");
    command->add_flag("--salvage", options->salvage, "Of a damaged stream, write what can be read");
    addFormat(command, &options->format);
}

void addShow(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<stored::Show>();
    CLI::App* const command = addCommand(app, run, "show", "Show a stored configuration", show_text,
                                         [options] { return options->run(); });
    addInput(command, options->input);
    command->add_flag("-j,--json", options->json,
                      "As JSON, as convert writes it, with the problems");
    command->add_flag("--show-password", options->show_password,
                      "Show the password, too, and all texts of a damaged stream");
    addFormat(command, &options->format);
}

} // namespace tovik_host
