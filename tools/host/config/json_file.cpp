#include "tools/host/config/json_file.h"

#include "tools/host/terminal/exit_code.h"

#include <QFile>
#include <QSet>

#include <iterator>
#include <limits>

namespace tovik_host::config {

namespace {

const int deepest = 200;

/// The line of the character that the parser took last. A line break counts once the parser goes
/// on, since it looks one character ahead to find the end of a number.
struct LineCounter
{
    int line = 1;
    bool is_after_break = false;

    void take(char character)
    {
        line += is_after_break ? 1 : 0;
        is_after_break = character == '\n';
    }
};

/// Walks over the text for the parser and counts. It has what the parser needs of an iterator.
struct CountingIterator
{
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    const char* position;
    LineCounter* counter;

    reference operator*() const { return *position; }
    CountingIterator& operator++()
    {
        counter->take(*position++);
        return *this;
    }
    bool operator!=(const CountingIterator& other) const { return position != other.position; }
};

QString memberPath(const QString& object, const QString& name)
{
    return object.isEmpty() ? name : object + u'.' + name;
}

QString elementPath(const QString& list, int index)
{
    return u"%1[%2]"_s.arg(list).arg(index);
}

/// The reason in a message of the JSON library, without the text around the place, which may be the
/// password.
QString reasonOf(const std::string& message)
{
    const std::size_t dash = message.find(" - ");
    const std::size_t start = dash == std::string::npos ? 0 : dash + 3;
    return QString::fromStdString(
        message.substr(start, message.find("; last read", start) - start));
}

/// Notes the lines while the parser goes through the text, and refuses what no file of ours has.
class LineReader : public nlohmann::json_sax<nlohmann::json>
{
public:
    LineReader(const LineCounter& counter, JsonFile* file) : counter_(counter), file_(file) {}

    bool null() override { return take(); }
    bool boolean(bool) override { return take(); }
    bool number_integer(number_integer_t) override { return take(); }
    bool number_unsigned(number_unsigned_t) override { return take(); }
    bool number_float(number_float_t, const string_t&) override { return take(); }
    bool string(string_t&) override { return take(); }
    bool binary(binary_t&) override { return false; } // of other formats
    bool start_object(std::size_t) override { return enter(false); }
    bool key(string_t& text) override
    {
        Level& level = levels_.last();
        level.name = QString::fromStdString(text);
        if (level.names.contains(level.name)) {
            throw terminal::UsageError(
                u"%1:%2: member \"%3\" stands twice in one object"_s.arg(file_->path)
                    .arg(counter_.line)
                    .arg(level.name));
        }
        level.names.insert(level.name);
        file_->lines.insert(path(), counter_.line);
        return true;
    }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t) override { return enter(true); }
    bool end_array() override { return leave(); }
    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override
    {
        const bool is_number = dynamic_cast<const nlohmann::json::out_of_range*>(&error) != nullptr;
        throw terminal::UsageError(u"%1:%2: not valid JSON: %3"_s.arg(file_->path)
                                       .arg(counter_.line)
                                       .arg(is_number ? u"a number is beyond what a double holds"_s
                                                      : reasonOf(error.what())));
    }

private:
    /// An object or a list that the parser is in.
    struct Level
    {
        bool is_list;
        QString path;
        QString name = QString(); ///< Of the current member.
        QSet<QString> names = {}; ///< Of all members so far.
        int index = 0;            ///< Of the current element.
    };

    bool isInList() const { return !levels_.isEmpty() && levels_.last().is_list; }
    /// Of the value that the parser is at.
    QString path() const
    {
        if (levels_.isEmpty())
            return QString();
        const Level& level = levels_.last();
        return level.is_list ? elementPath(level.path, level.index)
                             : memberPath(level.path, level.name);
    }
    void note()
    {
        if (isInList())
            file_->lines.insert(path(), counter_.line);
    }
    bool goOn()
    {
        if (isInList())
            ++levels_.last().index;
        return true;
    }
    bool enter(bool is_list)
    {
        note();
        levels_.append({is_list, path()});
        if (levels_.size() > deepest + 1) {
            throw terminal::UsageError(
                u"%1: brackets stand in one another more than %2 deep"_s.arg(file_->path)
                    .arg(deepest));
        }
        return true;
    }
    bool leave()
    {
        levels_.removeLast();
        return goOn();
    }
    bool take()
    {
        note();
        return goOn();
    }

    const LineCounter& counter_;
    JsonFile* file_;
    QVector<Level> levels_;
};

} // namespace

JsonFile parseJson(const QString& path, const QByteArray& text)
{
    JsonFile file = {path, {}, {}};
    LineCounter counter;
    LineReader reader(counter, &file);
    nlohmann::json::sax_parse(CountingIterator{text.begin(), &counter},
                              CountingIterator{text.end(), &counter}, &reader);
    file.root = nlohmann::json::parse(text.begin(), text.end());
    return file;
}

JsonFile readJson(const QString& path, const QString& what)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw terminal::UsageError(
            u"cannot read the %1 \"%2\": %3"_s.arg(what, path, file.errorString()));
    }
    return parseJson(path, file.readAll());
}

JsonPlace JsonPlace::at(const char* name) const
{
    if (!has(name))
        fail(u"the member \"%1\" is missing"_s.arg(QLatin1String(name)));
    return {*file_, json_->at(name), memberPath(path_, QString::fromUtf8(name))};
}

QVector<JsonPlace> JsonPlace::elements() const
{
    if (!json_->is_array())
        fail(u"must be a list: [ ... ]"_s);
    QVector<JsonPlace> elements;
    for (const nlohmann::json& element : *json_)
        elements.append({*file_, element, elementPath(path_, elements.size())});
    return elements;
}

void JsonPlace::allowOnly(const QStringList& names) const
{
    if (!json_->is_object())
        fail(u"must be an object: { ... }"_s);
    for (const auto& member : json_->items()) {
        if (names.contains(QString::fromStdString(member.key())))
            continue;
        const QString path = memberPath(path_, QString::fromStdString(member.key()));
        JsonPlace(*file_, member.value(), path)
            .fail(u"is no member of this object; it may have: %1"_s.arg(names.join(u", "_s)));
    }
}

void JsonPlace::allowOnly(std::initializer_list<const char*> names) const
{
    QStringList texts;
    for (const char* name : names)
        texts << QString::fromLatin1(name);
    allowOnly(texts);
}

QString JsonPlace::text() const
{
    if (!json_->is_string())
        fail(u"must be a text in quotes"_s);
    return QString::fromStdString(json_->get<std::string>());
}

qint64 JsonPlace::number(qint64 low, qint64 high) const
{
    const bool is_huge = json_->is_number_unsigned() &&
                         json_->get<quint64>() > quint64(std::numeric_limits<qint64>::max());
    const bool fits = json_->is_number_integer() && !is_huge && json_->get<qint64>() >= low &&
                      json_->get<qint64>() <= high;
    if (!fits)
        fail(u"must be a whole number from %1 to %2"_s.arg(low).arg(high));
    return json_->get<qint64>();
}

bool JsonPlace::flag() const
{
    if (!json_->is_boolean())
        fail(u"must be true or false"_s);
    return json_->get<bool>();
}

QString JsonPlace::requiredText(const char* name) const
{
    const JsonPlace member = at(name);
    const QString text = member.text();
    if (text.isEmpty())
        member.fail(u"must not be empty"_s);
    return text;
}

QString JsonPlace::optionalText(const char* name, const QString& fallback) const
{
    return has(name) ? at(name).text() : fallback;
}

int JsonPlace::optionalNumber(const char* name, int fallback, int low, int high) const
{
    return has(name) ? int(at(name).number(low, high)) : fallback;
}

bool JsonPlace::optionalFlag(const char* name, bool fallback) const
{
    return has(name) ? at(name).flag() : fallback;
}

QString JsonPlace::where() const
{
    const QString start = u"%1:%2"_s.arg(file_->path).arg(file_->lines.value(path_, 1));
    return path_.isEmpty() ? start : start + u": "_s + path_;
}

void JsonPlace::fail(const QString& problem) const
{
    throw terminal::UsageError(where() + u": "_s + problem);
}

} // namespace tovik_host::config
