#include "tests/reliability/fault_matrix/measurement.h"

#include <csignal>

namespace fault_matrix {

namespace {

constexpr int unknown_token_status = 0x400F0004;

QString seconds(double value)
{
    return value < 0 ? latin1("never") : latin1("after %1 s").arg(value, 0, 'f', 2);
}

class Judge
{
public:
    Judge(const Cell& cell, const Measurement& measured, const Limits& limits)
        : cell_(cell),
          is_(measured),
          limits_(limits),
          expected_(expectationFor(cell))
    {}

    /// \param times whether limits of time count
    QStringList breaches(bool times)
    {
        times_ = times;
        if (expected_.outcome == Outcome::Dies) {
            judgeDeath();
            return breaches_;
        }
        require(is_.signal == 0, latin1("the process ended: ") + is_.last_words);
        require(is_.began || !times_, latin1("no values before the fault"));
        if (!breaches_.isEmpty())
            return breaches_;
        judgeStatus();
        judgeValues();
        judgeAttempts();
        judgeAnswers();
        return breaches_;
    }

private:
    void require(bool condition, const QString& otherwise)
    {
        if (!condition)
            breaches_.append(otherwise);
    }

    void judgeDeath()
    {
        require(is_.signal == SIGABRT && is_.last_words.contains(expected_.death),
                latin1("should have ended by SIGABRT with %1, signal %2: %3")
                    .arg(expected_.death)
                    .arg(is_.signal)
                    .arg(is_.last_words));
    }

    void judgeStatus()
    {
        QList<int> allowed{0};
        if (expected_.isSeen())
            allowed.append(expected_.status);
        if (needsReconnect(cell_.operation))
            allowed.append(unknown_token_status); // what the connection is lost by
        for (int status : is_.statuses)
            require(allowed.contains(status), latin1("status ") + statusText(status));
        if (expected_.isSeen())
            within(is_.seen, expected_.seen_within,
                   latin1("status ") + statusText(expected_.status));
    }

    void judgeValues()
    {
        require(is_.lost.isEmpty(), latin1("cache: ") + is_.lost.join(latin1("; ")));
        if (expected_.goes_on)
            within(is_.on, expected_.on_within, "new values during the fault");
        else if (cell_.operation != Operation::Write) // which leaves a cycle under way to its end
            require(is_.on < 0, latin1("new values during the fault, ") + seconds(is_.on));
        if (expected_.recovers)
            within(is_.back, expected_.back_within, "new values after the fault");
        else
            require(is_.back < 0, latin1("new values after the fault, ") + seconds(is_.back));
    }

    /// Attempts come no faster than documented; that they come at all shows in the recovery.
    void judgeAttempts()
    {
        const double period =
            isTimed(cell_.handling) ? retryInterval(cell_.handling) : 2 * read_period / 1e3;
        const int most = int(is_.held / period) + 1;
        require(is_.attempts <= most,
                latin1("%1 reconnects in %2 s").arg(is_.attempts).arg(is_.held, 0, 'f', 2));
    }

    void judgeAnswers()
    {
        require(is_.astray == 0, latin1("%1 requests not answered once, at once").arg(is_.astray));
        require(is_.answers == is_.requests,
                latin1("%1 answers to %2 requests").arg(is_.answers).arg(is_.requests));
        if (!times_)
            return;
        require(is_.longest_answer <= limits_.answer,
                latin1("an answer took %1 ms").arg(is_.longest_answer * 1e3, 0, 'f', 1));
        require(is_.close >= 0 && is_.close <= limits_.close,
                latin1("closed ") + seconds(is_.close));
    }

    void within(double measured, double documented, const QString& what)
    {
        require(!times_ || (measured >= 0 && measured <= documented + limits_.slack),
                latin1("%1 %2, due within %3 s")
                    .arg(what, seconds(measured))
                    .arg(documented + limits_.slack, 0, 'f', 2));
    }
    void within(double measured, double documented, const char* what)
    {
        within(measured, documented, latin1(what));
    }

    const Cell& cell_;
    const Measurement& is_;
    const Limits& limits_;
    Expectation expected_;
    QStringList breaches_;
    bool times_ = true;
};

} // namespace

Limits Limits::patient(double factor)
{
    Limits limits;
    limits.slack *= factor;
    limits.close *= factor;
    limits.answer *= factor;
    return limits;
}

QStringList breaches(const Cell& cell, const Measurement& measured, const Limits& limits)
{
    return Judge(cell, measured, limits).breaches(true);
}

bool isOnlyLate(const Cell& cell, const Measurement& measured)
{
    return Judge(cell, measured, Limits()).breaches(false).isEmpty();
}

QString statusText(int status)
{
    return status == 0 ? latin1("0") : latin1("0x") + QString::number(uint(status), 16).toUpper();
}

nlohmann::json Measurement::toJson() const
{
    nlohmann::json seen_statuses = nlohmann::json::array();
    for (int status : statuses)
        seen_statuses.push_back(status);
    return {{"began", began},
            {"struck", struck},
            {"seen", seen},
            {"on", on},
            {"back", back},
            {"held", held},
            {"attempts", attempts},
            {"statuses", seen_statuses},
            {"left_with", left_with},
            {"close", close},
            {"closed_amid", closed_amid},
            {"requests", requests},
            {"answers", answers},
            {"astray", astray},
            {"longest_answer", longest_answer},
            {"longest_work", longest_work},
            {"lost", lost.join(QLatin1Char('\n')).toStdString()}};
}

Measurement Measurement::fromJson(const nlohmann::json& json)
{
    Measurement measured;
    json.at("began").get_to(measured.began);
    json.at("struck").get_to(measured.struck);
    json.at("seen").get_to(measured.seen);
    json.at("on").get_to(measured.on);
    json.at("back").get_to(measured.back);
    json.at("held").get_to(measured.held);
    json.at("attempts").get_to(measured.attempts);
    for (const auto& status : json.at("statuses"))
        measured.statuses.append(status.get<int>());
    json.at("left_with").get_to(measured.left_with);
    json.at("close").get_to(measured.close);
    json.at("closed_amid").get_to(measured.closed_amid);
    json.at("requests").get_to(measured.requests);
    json.at("answers").get_to(measured.answers);
    json.at("astray").get_to(measured.astray);
    json.at("longest_answer").get_to(measured.longest_answer);
    json.at("longest_work").get_to(measured.longest_work);
    const QString lost = QString::fromStdString(json.at("lost").get<std::string>());
    measured.lost = lost.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return measured;
}

} // namespace fault_matrix
