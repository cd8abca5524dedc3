#include "cloud/trace/secrets.h"

#include <cstring>

namespace secrets {

namespace {

const char* const keys[] = {"\"password\"", "\"token\""};
const char asterisks[] = "***";
/// What is shorter would be found everywhere.
const int shortest_known = 3;

bool isSpace(char character)
{
    return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

int afterSpace(const QByteArray& body, int at)
{
    while (at < body.size() && isSpace(body.at(at)))
        ++at;
    return at;
}

/// Where a text ends that begins at \a at, after its quotation mark: at the other one, or where
/// the body ends.
int endOfText(const QByteArray& body, int at)
{
    for (; at < body.size() && body.at(at) != '"'; ++at) {
        if (body.at(at) == '\\')
            ++at;
    }
    return qMin(at, body.size());
}

struct Place
{
    int begin;
    int end; ///< After the last byte.
};

/// The value of the member whose name ends in front of \a at; empty at the body's end: it has none.
Place valueAfter(const QByteArray& body, int at)
{
    Place found = {body.size(), body.size()};
    const int colon = afterSpace(body, at);
    if (colon >= body.size() || body.at(colon) != ':')
        return found; // a value that reads like a name
    found.begin = afterSpace(body, colon + 1);
    if (found.begin < body.size() && body.at(found.begin) == '"') {
        ++found.begin;
        found.end = endOfText(body, found.begin);
        return found;
    }
    found.end = found.begin;
    while (found.end < body.size() && !std::strchr(",]}", body.at(found.end)))
        ++found.end;
    return found;
}

/// The value of the next secret member from \a from on; empty at the body's end: there is none.
Place nextFrom(const QByteArray& body, int from)
{
    for (int at = body.indexOf('"', from); at >= 0; at = body.indexOf('"', at + 1)) {
        for (const char* key : keys) {
            const int length = int(std::strlen(key));
            if (std::strncmp(body.constData() + at, key, size_t(length)) == 0) {
                const Place place = valueAfter(body, at + length);
                if (place.begin < body.size())
                    return place;
            }
        }
    }
    return Place{body.size(), body.size()};
}

} // namespace

QList<QByteArray> in(const QByteArray& body)
{
    QList<QByteArray> values;
    for (Place place = nextFrom(body, 0); place.begin < body.size();
         place = nextFrom(body, place.end))
        values << body.mid(place.begin, place.end - place.begin);
    return values;
}

QByteArray blotted(const QByteArray& body, const QList<QByteArray>& known)
{
    QByteArray shown;
    int done = 0;
    for (Place place = nextFrom(body, 0); place.begin < body.size();
         place = nextFrom(body, place.end)) {
        shown += body.mid(done, place.begin - done);
        shown += asterisks;
        done = place.end;
    }
    shown += body.mid(done);
    for (int i = 0; i < known.size(); ++i) {
        if (known.at(i).size() >= shortest_known)
            shown.replace(known.at(i), asterisks);
    }
    return shown;
}

} // namespace secrets
