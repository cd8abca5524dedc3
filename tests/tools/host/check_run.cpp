#include "tests/tools/host/check_run.h"

CheckRun::CheckRun()
{
    host.useAccount(latin1("operator@example.com"), latin1("tovik"));
    host.addItem(latin1("Flow"), latin1("boiler-flow"), latin1("32Bit-FLOAT"));
    host.addItem(latin1("On"), latin1("boiler-on"), latin1("Bit"));
}

bool CheckRun::startService(const QStringList& options)
{
    const bool is_started = cloud.start(options);
    host.useAddress(latin1("https://127.0.0.1:%1").arg(cloud.port()));
    return is_started;
}

int CheckRun::check(const QStringList& options)
{
    host.writeConfig();
    host.startBare(
        QStringList{latin1("check"), latin1("--config"), host.configFile(), latin1("--json")} +
        options);
    const int code = host.wait();
    lines_ = host.outputJson();
    return code;
}

QVector<nlohmann::json> CheckRun::stepsOf(const char* name) const
{
    QVector<nlohmann::json> steps;
    for (const nlohmann::json& line : lines_) {
        if (textOf(line, "step") == latin1(name))
            steps << line;
    }
    return steps;
}

nlohmann::json CheckRun::firstStep(const char* name) const
{
    const QVector<nlohmann::json> steps = stepsOf(name);
    return steps.isEmpty() ? nlohmann::json::object() : steps.first();
}

nlohmann::json CheckRun::verdict() const
{
    return lines_.isEmpty() ? nlohmann::json::object() : lines_.last();
}

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

QString textOf(const nlohmann::json& object, const char* member)
{
    return QString::fromStdString(object.value(member, std::string()));
}
