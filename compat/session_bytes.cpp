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

int byteAt(const QByteArray& bytes, int at)
{
    return static_cast<unsigned char>(bytes.at(at));
}

/// Reads a length that stands at \a at, and moves \a at after it; -1: none in the form of DER.
int readLength(const QByteArray& bytes, int* at)
{
    if (*at >= bytes.size())
        return -1;
    const int first = byteAt(bytes, (*at)++);
    if (first < 0x80)
        return first;
    const int count = first & 0x7F;
    if (count < 1 || count > most_length_bytes || count > bytes.size() - *at)
        return -1;
    int length = 0;
    for (int i = 0; i < count; ++i)
        length = length << 8 | byteAt(bytes, (*at)++);
    const bool is_shortest = length >= 0x80 && length >> 8 * (count - 1) != 0;
    return is_shortest ? length : -1;
}

/// Reads the element at \a at, which must end before \a end.
bool readElement(const QByteArray& bytes, int at, int end, Element* element)
{
    if (at >= end || (byteAt(bytes, at) & tag_number) == tag_number)
        return false;
    element->tag = byteAt(bytes, at);
    element->begin = at++;
    const int length = readLength(bytes, &at);
    element->contents = at;
    element->end = at + length;
    return length >= 0 && length <= end - at;
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
    Element whole = {0, 0, 0, 0};
    if (!readElement(session, 0, session.size(), &whole) || whole.tag != tag_sequence ||
        whole.end != session.size())
        return session;
    Element certificate = {0, 0, 0, 0};
    Element element = {0, 0, 0, whole.contents};
    for (int index = 0; element.end < whole.end; ++index) {
        const int before = element.tag;
        if (!readElement(session, element.end, whole.end, &element) ||
            !isInPlace(element.tag, index, before))
            return session;
        if (element.tag == tag_certificate)
            certificate = element;
    }
    if (certificate.tag == 0)
        return session;
    QByteArray rest = session.mid(whole.contents);
    rest.remove(certificate.begin - whole.contents, certificate.end - certificate.begin);
    return char(tag_sequence) + lengthBytes(rest.size()) + rest;
}

} // namespace session_bytes
