#include "tools/host/stored_record.h"

#include <algorithm>
#include <iterator>

namespace tovik_host {

bool isHidden(const char* name, HiddenTexts hidden)
{
    const char* const account[] = {"host", "project", "email", "password"};
    const auto is_it = [name](const char* other) { return qstrcmp(name, other) == 0; };
    switch (hidden) {
    case HiddenTexts::none:
        return false;
    case HiddenTexts::password:
        return is_it("password");
    case HiddenTexts::account:
        return std::any_of(std::begin(account), std::end(account), is_it);
    }
    return true;
}

QString MemberPath::text() const
{
    QString path;
    for (const Part& part : parts_) {
        if (!part.name)
            path += QStringLiteral("[%1]").arg(part.index);
        else
            path += (path.isEmpty() ? QString() : QStringLiteral(".")) + QLatin1String(part.name);
    }
    return path;
}

} // namespace tovik_host
