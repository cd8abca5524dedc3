#include "compat/session_bytes.h"

namespace session_bytes {

namespace {

const int tag_sequence = 0x30;
const int tag_class = 0xC0;
const int context_class = 0x80;
const int tag_number = 0x1F;
const int tag_certificate = 0xA3;
const int most_length_bytes = 3;

/// What each session begins with: version, protocol, cipher, session id and master key.
const int first_tags[] = {0x02, 0x02, 0x04, 0x04, 0x04};
const int first_tag_count = int(sizeof first_tags / sizeof first_tags[0]);

/// An element of a sequence.
struct Element
{
    int tag;
    int begin; ///< Of the tag.
    int contents;
    int end;
};

const Element no_element = {0, 0, 0, 0};
const int no_length = -1;

int byteAt(const QByteArray& bytes, int at)
{
    return static_cast<unsigned char>(bytes.at(at));
}

/// Reads a length that stands at \a at, and moves \a at after it, if it is in the form of DER.
int readLength(const QByteArray& bytes, int* at)
{
    if (*at >= bytes.size())
        return no_length;
    const int first = byteAt(bytes, (*at)++);
    if (first < 0x80)
        return first;
    const int count = first & 0x7F;
    if (count > most_length_bytes || count >= bytes.size() - *at)
        return no_length;
    int length = 0;
    for (int i = 0; i < count; ++i)
        length = length << 8 | byteAt(bytes, (*at)++);
    const bool is_shortest = length >= 0x80 && length >> 8 * (count - 1) != 0;
    return is_shortest ? length : no_length;
}

/// The element at \a at, unless it goes beyond \a end.
Element elementAt(const QByteArray& bytes, int at, int end)
{
    if (at >= end || (byteAt(bytes, at) & tag_number) == tag_number)
        return no_element;
    int contents = at + 1;
    const int length = readLength(bytes, &contents);
    const Element element = {byteAt(bytes, at), at, contents, contents + length};
    return length >= 0 && element.end <= end ? element : no_element;
}

/// Whether an element with \a tag may come as number \a index after one with \a before: the fixed
/// ones first, then optional ones in the order of their numbers.
bool isInPlace(int tag, int index, int before)
{
    if (index < first_tag_count)
        return tag == first_tags[index];
    return (tag & tag_class) == context_class &&
           (index == first_tag_count || (tag & tag_number) > (before & tag_number));
}

QByteArray lengthBytes(int length)
{
    QByteArray bytes;
    for (int rest = length; rest > 0; rest >>= 8)
        bytes.prepend(char(rest & 0xFF));
    if (length >= 0x80)
        bytes.prepend(char(0x80 | bytes.size()));
    return bytes;
}

} // namespace

QByteArray withoutCertificate(const QByteArray& session)
{
    const Element whole = elementAt(session, 0, session.size());
    if (whole.tag != tag_sequence || whole.end != session.size())
        return session;
    Element certificate = no_element;
    Element before = no_element;
    int at = whole.contents;
    for (int index = 0; at < whole.end; ++index) {
        const Element element = elementAt(session, at, whole.end);
        if (!isInPlace(element.tag, index, before.tag))
            return session;
        if (element.tag == tag_certificate)
            certificate = element;
        before = element;
        at = element.end;
    }
    QByteArray rest = session.mid(whole.contents);
    rest.remove(certificate.begin - whole.contents, certificate.end - certificate.begin);
    return char(tag_sequence) + lengthBytes(rest.size()) + rest;
}

} // namespace session_bytes
