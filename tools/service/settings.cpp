#include "tools/service/settings.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdlib>

namespace tovik_service {

namespace {

using Json = nlohmann::json;

/// Where it is by default; empty: nowhere.
std::string settingsFile()
{
    const char* const folder = ::secure_getenv("XDG_CONFIG_HOME");
    const char* const home = ::secure_getenv("HOME");
    const char* const file = "/tovik/tovik-cloud.json";
    if (folder && *folder)
        return std::string(folder) + file;
    return home && *home ? std::string(home) + "/.config" + file : std::string();
}

class JsonSettings : public CLI::Config
{
public:
    explicit JsonSettings(const CLI::App& app) : app_(app) {}

    std::string to_config(const CLI::App*, bool, bool, std::string) const override { return {}; }

    std::vector<CLI::ConfigItem> from_config(std::istream& input) const override
    {
        const std::string file = app_["--settings"]->as<std::string>();
        const Json settings = Json::parse(input, nullptr, false);
        if (!settings.is_object())
            throw CLI::ValidationError(file, "the file is no JSON object");
        std::vector<CLI::ConfigItem> given;
        for (const auto& member : settings.items()) {
            if (!app_.get_option_no_throw("--" + member.key()))
                throw CLI::ValidationError(file, "no option \"" + member.key() + "\"");
            CLI::ConfigItem item;
            item.name = member.key();
            item.inputs = wordsOf(member.value());
            if (item.inputs.empty()) {
                throw CLI::ValidationError(file, member.key() + " must be a text, a number, true, "
                                                                "false or a list of texts");
            }
            given.push_back(item);
        }
        return given;
    }

private:
    /// Empty: it is no value of an option.
    static std::vector<std::string> wordsOf(const Json& value)
    {
        if (value.is_string())
            return {value.get<std::string>()};
        if (value.is_boolean() || value.is_number())
            return {value.dump()};
        std::vector<std::string> words;
        bool is_list = value.is_array() && !value.empty();
        for (const Json& one : value) {
            is_list = is_list && one.is_string();
            words.push_back(is_list ? one.get<std::string>() : std::string());
        }
        return is_list ? words : std::vector<std::string>();
    }

    const CLI::App& app_;
};

} // namespace

void addSettings(CLI::App& app)
{
    app.set_config("--settings", settingsFile(),
                   "Options that the line does not give, by their long names in a JSON object")
        ->type_name("FILE");
    app.config_formatter(std::make_shared<JsonSettings>(app));
}

} // namespace tovik_service
