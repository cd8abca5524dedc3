#include "tools/host/commands.h"
#include "tools/host/terminal/context.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace tovik_host {

namespace {

using Words = std::vector<std::string>;

QString text(const std::string& word)
{
    return QString::fromStdString(word);
}

bool isOption(const std::string& word)
{
    return word.size() > 1 && word.front() == '-';
}

/// The command that begins \a words; null: the program's own options do.
const CLI::App* commandOf(const CLI::App& app, const Words& words)
{
    const QString hint = u"; tovik-host help lists the commands"_s;
    if (words.empty())
        throw terminal::UsageError(u"the command is missing"_s + hint);
    const std::string& first = words.front();
    const std::string name = first.substr(0, first.find('='));
    if (isOption(first) && app.get_option_no_throw(name))
        return nullptr;
    if (isOption(first)) {
        throw terminal::UsageError(
            u"%1 stands before the command; options come after it: tovik-host COMMAND %1 ..."_s.arg(
                text(name)));
    }
    QStringList names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        names << text(command->get_name());
        if (command->get_name() == first)
            return command;
    }
    const QString near = terminal::nearText(text(first), names);
    throw terminal::UsageError(u"there is no command \"%1\""_s.arg(text(first)) +
                               (near.isEmpty() ? hint : near));
}

QStringList longNamesOf(const CLI::App& command)
{
    QStringList names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names << u"--"_s + text(name);
    }
    return names;
}

/// Which other commands have the option \a name, as the end of a message; empty: none has.
QString whoHas(const QString& name, const CLI::App& app)
{
    QStringList commands;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (longNamesOf(*command).contains(name))
            commands << text(command->get_name());
    }
    if (commands.isEmpty())
        return QString();
    const QString last = commands.takeLast();
    return commands.isEmpty() ? u"; %1 has it"_s.arg(last)
                              : u"; %1 and %2 have it"_s.arg(commands.join(u", "_s), last);
}

void refuseUnknownOptions(const CLI::App& app, const CLI::App& command, const Words& words)
{
    const QStringList names = longNamesOf(command);
    for (const std::string& word : words) {
        if (word == "--")
            return;
        const QString name = text(word.substr(0, word.find('=')));
        if (name.startsWith(QLatin1String("--")) && !names.contains(name)) {
            const QString others = whoHas(name, app);
            throw terminal::UsageError(
                u"%1 has no option %2"_s.arg(text(command.get_name()), name) +
                (others.isEmpty() ? terminal::nearText(name, names) : others));
        }
    }
}

/// As the command-line library wants it: the last word first.
Words reversed(const Words& words)
{
    Words reversed(words.size());
    std::transform(words.rbegin(), words.rend(), reversed.begin(), keepBrackets);
    return reversed;
}

int print(const CLI::App& app, const CLI::Success& asked)
{
    std::ostringstream text;
    app.exit(asked, text, text);
    terminal::Streams streams;
    streams.out.write(QByteArray::fromStdString(text.str()));
    return streams.codeAfterWriting(terminal::exitDone);
}

} // namespace

std::optional<int> parseLine(CLI::App& app, Words words)
{
    const bool asks_for_help = !words.empty() && words.front() == "help";
    if (asks_for_help && (words.size() == 1 || !isOption(words[1]))) {
        words.erase(words.begin());
        words.push_back("--help");
    }
    const CLI::App* const command = commandOf(app, words);
    if (command) {
        refuseUnknownOptions(app, *command, words);
        addSettings(*command, words);
    }
    try {
        app.parse(reversed(words));
    } catch (const CLI::Success& asked) {
        return print(app, asked);
    } catch (const CLI::ParseError& error) {
        QString problem = text(withoutMark(error.what()));
        if (command)
            problem += u" (tovik-host help %1)"_s.arg(text(command->get_name()));
        throw terminal::UsageError(problem);
    }
    return std::nullopt;
}

} // namespace tovik_host
