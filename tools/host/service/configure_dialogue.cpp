#include "tools/host/service/configure.h"

#include "tools/host/service/catalogue.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <QRegularExpression>

#include <algorithm>
#include <numeric>

namespace tovik_host::service {

namespace {

const char help_text[] = R"(  3 5-9          choose items by their numbers
  Boiler/*       choose items by a pattern: GROUP/ITEM, or ITEM, or the id
  -3 5-9  -*Test*  take them back; "- " before what chooses
  s TEXT         search: list the items with the text in group, name, id or type
  l              list all items; the empty line shows the next page
  c              list the chosen items
  p              preview: the names as the configuration will have them
  d              done
  q              quit without a configuration
  h              this help
)";

QVector<int> upTo(int count)
{
    QVector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

QVector<int> indicesOf(const QVector<bool>& flags)
{
    QVector<int> indices;
    for (int i = 0; i < flags.size(); ++i) {
        if (flags.at(i))
            indices << i;
    }
    return indices;
}

/// Whether \a text is nothing but numbers and ranges.
bool isNumbers(const QString& text)
{
    static const QRegularExpression numbers(
        u"\\A[\\s,]*(\\d+(\\s*-\\s*\\d+)?)([\\s,]+\\d+(\\s*-\\s*\\d+)?)*[\\s,]*\\z"_s);
    return numbers.match(text).hasMatch();
}

} // namespace

ConfigureDialogue::ConfigureDialogue(const QVector<OfferedItem>& offered, int page)
    : offered_(offered),
      chosen_(offered.size(), false),
      page_(std::max(page, 1))
{}

QString ConfigureDialogue::opening()
{
    return list(upTo(offered_.size())) +
           u"Choose by number, range or pattern, then d for done; h is for help.\n"_s;
}

QString ConfigureDialogue::prompt() const
{
    return u"%1 of %2 chosen> "_s.arg(chosen_.count(true)).arg(counted(offered_.size(), u"item"_s));
}

QString ConfigureDialogue::answer(const QString& typed)
{
    const QString text = typed.trimmed();
    const QString word = text.section(u' ', 0, 0);
    const QString rest = text.mid(word.size()).trimmed();
    const auto is = [&word](const char* name) {
        return word == QLatin1String(name) || word == QLatin1String(name, 1);
    };
    if (text.isEmpty())
        return nextPage();
    if (is("search"))
        return search(rest);
    if (text.startsWith(u'-'))
        return select(text.mid(1).trimmed(), false);
    if (!rest.isEmpty())
        return select(text, true);
    if (is("list"))
        return list(upTo(offered_.size()));
    if (is("chosen"))
        return list(indicesOf(chosen_));
    if (is("preview"))
        return preview();
    if (is("done"))
        return finish();
    if (is("help") || word == QLatin1String("?"))
        return QString::fromLatin1(help_text);
    if (!is("quit"))
        return select(text, true);
    state_ = State::quit;
    return QString();
}

QVector<OfferedItem> ConfigureDialogue::chosen() const
{
    QVector<OfferedItem> items;
    for (const int index : indicesOf(chosen_))
        items << offered_.at(index);
    return items;
}

QString ConfigureDialogue::select(const QString& text, bool choose)
{
    QString problem;
    const QVector<int> named = itemsNamed(text, &problem);
    if (!problem.isEmpty())
        return problem + u'\n';
    int changed = 0;
    for (const int index : named) {
        changed += chosen_.at(index) == choose ? 0 : 1;
        chosen_[index] = choose;
    }
    if (named.size() == 1)
        return line(named.first()) + u'\n';
    const QString items = counted(named.size(), u"item"_s);
    if (choose)
        return u"%1 chosen, %2 of them new\n"_s.arg(items).arg(changed);
    const QString rest = changed == named.size() ? QString() : u", the others were not chosen"_s;
    return u"%1 of %2 taken back%3\n"_s.arg(changed).arg(items, rest);
}

QVector<int> ConfigureDialogue::itemsNamed(const QString& text, QString* problem) const
{
    QVector<int> named;
    if (!isNumbers(text)) {
        try {
            const ItemTest is_meant = itemPattern(text, offered_);
            for (int i = 0; i < offered_.size(); ++i) {
                if (is_meant(offered_.at(i)))
                    named << i;
            }
            if (named.isEmpty())
                *problem = u"no item matches \"%1\"; h is for help"_s.arg(text);
        } catch (const terminal::UsageError& error) {
            *problem = error.message();
        }
        return named;
    }
    static const QRegularExpression range(u"(\\d+)(?:\\s*-\\s*(\\d+))?"_s);
    auto ranges = range.globalMatch(text);
    while (ranges.hasNext()) {
        const QRegularExpressionMatch match = ranges.next();
        // What is too long for a number is too large for the list.
        const int first = match.captured(1).toInt();
        const int last = match.captured(2).isEmpty() ? first : match.captured(2).toInt();
        if (first < 1 || last < first || last > offered_.size()) {
            *problem = u"\"%1\" is not within 1-%2"_s.arg(match.captured(0)).arg(offered_.size());
            return {};
        }
        for (int number = first; number <= last; ++number)
            named << number - 1;
    }
    // Numbers may be named twice.
    std::sort(named.begin(), named.end());
    named.erase(std::unique(named.begin(), named.end()), named.end());
    return named;
}

QString ConfigureDialogue::list(const QVector<int>& items)
{
    listed_ = items;
    shown_ = 0;
    return items.isEmpty() ? u"none\n"_s : nextPage();
}

QString ConfigureDialogue::nextPage()
{
    if (shown_ >= listed_.size())
        return u"That was all; l lists from the start.\n"_s;
    QString text;
    const int end = std::min(shown_ + page_, int(listed_.size()));
    for (; shown_ < end; ++shown_)
        text += line(listed_.at(shown_)) + u'\n';
    if (end < listed_.size())
        text += u"-- %1 more: press Enter --\n"_s.arg(listed_.size() - end);
    return text;
}

QString ConfigureDialogue::search(const QString& text)
{
    if (text.isEmpty())
        return u"Search for what? s TEXT\n"_s;
    QVector<int> found;
    for (int i = 0; i < offered_.size(); ++i) {
        const OfferedItem& item = offered_.at(i);
        for (const QString& where : {item.path(), item.id, item.type}) {
            if (!where.contains(text, Qt::CaseInsensitive))
                continue;
            found << i;
            break;
        }
    }
    return list(found);
}

QString ConfigureDialogue::preview() const
{
    const NamedItems named = nameItems(chosen());
    if (named.items.isEmpty())
        return u"Nothing is chosen yet.\n"_s;
    QString text;
    for (const QString& warning : named.warnings.mid(0, page_))
        text += u"warning: %1\n"_s.arg(warning);
    for (const config::ItemConfig& item : named.items.mid(0, page_)) {
        text += u"  %1  %2  %3\n"_s.arg(item.name, terminal::printable(item.id),
                                        QString::fromLatin1(item.type->name));
    }
    if (named.items.size() > page_)
        text += u"  and %1 more\n"_s.arg(named.items.size() - page_);
    return text;
}

QString ConfigureDialogue::finish()
{
    if (!chosen_.contains(true))
        return u"Nothing is chosen yet; q leaves without a configuration.\n"_s;
    state_ = State::done;
    return QString();
}

QString ConfigureDialogue::line(int index) const
{
    const OfferedItem& item = offered_.at(index);
    const int digits = QString::number(offered_.size()).size();
    return u"%1 %2  %3  %4"_s.arg(chosen_.at(index) ? u"*"_s : u" "_s)
        .arg(index + 1, digits)
        .arg(terminal::printable(item.path()), item.shownType());
}

} // namespace tovik_host::service
