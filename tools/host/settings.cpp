#include "tools/host/commands.h"
#include "tools/host/config/config_file.h"
#include "tools/host/config/json_file.h"

#include <CLI/CLI.hpp>

#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

namespace tovik_host {

namespace {

/// Options of a service; with a link on the line they would be about something else.
const QStringList of_service = {u"config"_s, u"url"_s, u"url-file"_s};

/// The names by which \a words may give \a option.
bool isGiven(const CLI::Option& option, const std::vector<std::string>& words)
{
    const auto gives = [&option](const std::string& word) {
        return option.check_name(word.substr(0, word.find('='))) ||
               (word.size() > 2 && word[1] != '-' && option.check_name(word.substr(0, 2)));
    };
    return std::any_of(words.begin(), words.end(), gives);
}

/// Whether the line gives what the setting would be about, or what it cannot stand beside.
bool isDecided(const CLI::App& command, const CLI::Option& option,
               const std::vector<std::string>& words)
{
    const auto excluded = option.get_excludes();
    const CLI::Option* const link = command.get_option_no_throw("--link");
    const bool is_of_service = of_service.contains(QString::fromStdString(option.get_lnames()[0]));
    return isGiven(option, words) || (is_of_service && link && isGiven(*link, words)) ||
           std::any_of(excluded.begin(), excluded.end(),
                       [&words](const CLI::Option* other) { return isGiven(*other, words); });
}

/// Takes a password for the environment, unless it has one.
void takePassword(const config::JsonPlace& place)
{
    const QByteArray variable = config::defaultPasswordVariable().toLatin1();
    if (!qEnvironmentVariableIsSet(variable.constData()))
        qputenv(variable.constData(), place.text().toUtf8());
}

void refuseOpenPassword(const config::JsonPlace& settings, const QString& path)
{
    const bool has_password =
        settings.has("password") ||
        (settings.has("url") && !QUrl(settings.at("url").text()).password().isEmpty());
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther |
                        QFileDevice::WriteOther;
    if (has_password && (QFileInfo(path).permissions() & others))
        settings.fail(u"a password stands here, and others may read it: chmod 600 %1"_s.arg(path));
}

/// A setting as it would stand on the line; empty: it is switched off.
std::string wordOf(const std::string& name, const config::JsonPlace& place)
{
    const nlohmann::json& json = place.json();
    if (json.is_boolean())
        return json.get<bool>() ? "--" + name : std::string();
    if (!json.is_string() && !json.is_number())
        place.fail(u"must be a text, a number, true or false"_s);
    return "--" + name + "=" + (json.is_string() ? json.get<std::string>() : json.dump());
}

} // namespace

void addSettings(const CLI::App& command, std::vector<std::string>& words)
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                         u"/tovik/tovik-host.json"_s;
    if (!QFileInfo::exists(path))
        return;
    const config::JsonFile file = config::readJson(path, u"settings"_s);
    const config::JsonPlace settings(file);
    settings.allowOnly({"config", "library", "url", "url-file", "project", "email", "password",
                        "password-file", "password-env", "timeout", "interval", "stale", "log",
                        "verbose", "quiet"});
    refuseOpenPassword(settings, path);
    for (const auto& member : settings.json().items()) {
        const config::JsonPlace place = settings.at(member.key().c_str());
        if (member.key() == "password") {
            takePassword(place);
            continue;
        }
        const std::string word = wordOf(member.key(), place);
        const CLI::Option* const option = command.get_option_no_throw("--" + member.key());
        if (option && !word.empty() && !isDecided(command, *option, words))
            words.insert(words.begin() + 1, word);
    }
}

} // namespace tovik_host
