#include "tests/examples/modbus/interop_run.h"

#include "examples/modbus/modbus_status.h"

namespace interop {

namespace {

const int largest_counts[4][2] = {{2000, 1968}, {2000, 0}, {125, 0}, {125, 123}}; // read, write
const int digits[] = {0, 1, 3, 4};

int areaIndex(int digit)
{
    return digit < 2 ? digit : digit - 1;
}

/// The registers of a host's bytes, the test's own way: numbers, then shifts.
QList<int> registersOf(const Asked& asked)
{
    QList<int> words;
    const QByteArray& d = asked.data;
    const auto byte = [&d](int at) { return modbus::byteAt(d, at); };
    const bool swap_bytes = asked.extra2 >= 2;
    if (asked.extra1 != 4) {
        for (int at = 0; at < d.size(); at += 2)
            words.append(swap_bytes ? byte(at) << 8 | byte(at + 1) : byte(at + 1) << 8 | byte(at));
        return words;
    }
    const bool low_first = asked.extra2 == 1 || asked.extra2 == 3;
    for (int at = 0; at < d.size(); at += 4) {
        int low = byte(at + 1) << 8 | byte(at);
        int high = byte(at + 3) << 8 | byte(at + 2);
        if (swap_bytes) {
            low = (low & 0xFF) << 8 | low >> 8;
            high = (high & 0xFF) << 8 | high >> 8;
        }
        words.append(low_first ? low : high);
        words.append(low_first ? high : low);
    }
    return words;
}

} // namespace

int firstBit(int area_digit, int address)
{
    return (address * 7 + address / 11 + area_digit) % 3 == 0 ? 1 : 0;
}

int firstRegister(int area_digit, int address)
{
    return (address * 257 + area_digit * 4099 + 17) & 0xFFFF;
}

Run::Run(MiniatureHost& host, unsigned seed) : host_(host), random_(seed)
{
    for (int i = 0; i < area_size; ++i) {
        for (int area = 0; area < 2; ++area) {
            bits_[area][i] = firstBit(area, i);
            registers_[area][i] = firstRegister(area + 3, i);
        }
    }
}

int Run::below(int limit)
{
    return std::uniform_int_distribution<int>(0, limit - 1)(random_);
}

/// Mostly a few, sometimes one, sometimes as many as there may be.
int Run::randomCount(int largest)
{
    switch (below(16)) {
    case 0:
        return largest;
    case 1:
        return 1 + below(largest);
    case 2:
    case 3:
    case 4:
        return 1;
    default:
        return 1 + below(16);
    }
}

Asked Run::randomAsked(int digit, bool registers, bool write)
{
    Asked asked;
    int count = randomCount(largest_counts[areaIndex(digit)][write ? 1 : 0]);
    asked.station = station;
    asked.extra1 = registers ? 2 * below(3) : 0;
    asked.extra2 = registers ? below(4) : 0;
    asked.field1 = below(2);
    if (asked.extra1 == 4)
        count = qMax(2, count / 2 * 2);
    const int bytes = registers ? 2 * count : count;
    if (write) {
        for (int i = 0; i < bytes; ++i)
            asked.data.append(char(registers ? below(256) : below(2)));
    } else {
        asked.data_length = bytes;
    }
    const int start = below(area_size - count + 1);
    asked.address = QString(QLatin1String("%1x%2")).arg(digit).arg(start + 1);
    return asked;
}

QByteArray Run::expected(const Asked& asked, int digit, bool registers, int start) const
{
    // Written with the same settings, these bytes would give what the registers hold: so each
    // order is checked by the other direction's arithmetic.
    QByteArray bytes;
    for (int i = 0; i < asked.data_length && !registers; ++i)
        bytes.append(char(bits_[digit][start + i]));
    for (int i = 0; i < asked.data_length && registers; i += asked.extra1 == 4 ? 4 : 2) {
        const int* words = registers_[digit - 3] + start + i / 2;
        const auto put = [&bytes, &asked](int word) {
            const bool swapped = asked.extra2 >= 2;
            bytes.append(char(swapped ? word >> 8 : word & 0xFF));
            bytes.append(char(swapped ? word & 0xFF : word >> 8));
        };
        const bool two = asked.extra1 == 4;
        const bool low_first = asked.extra2 == 1 || asked.extra2 == 3;
        if (two)
            put(low_first ? words[0] : words[1]);
        put(two && low_first ? words[1] : words[0]);
    }
    return bytes;
}

bool Run::readsRight(const Asked& asked, int digit, bool registers, int start)
{
    const Got got = host_.read(asked);
    if (got.answers == 1 && got.status == 0 && got.data == expected(asked, digit, registers, start))
        return true;
    complaint_ = QString(QLatin1String("read of %1 bytes of %2: status %3, %4"))
                     .arg(asked.data_length)
                     .arg(asked.address, code(got.status), QLatin1String(got.data.toHex()));
    return false;
}

void Run::applyWrite(const Asked& asked, bool registers, int start)
{
    if (!registers) {
        for (int i = 0; i < asked.data.size(); ++i)
            bits_[0][start + i] = uchar(asked.data.at(i));
        return;
    }
    for (const int word : registersOf(asked))
        registers_[1][start++] = word;
}

bool Run::step()
{
    const int digit = digits[below(4)];
    const bool registers = digit >= 3;
    const bool write = (digit == 0 || digit == 4) && below(2) == 0;
    const Asked asked = randomAsked(digit, registers, write);
    const int start = asked.address.mid(2).toInt() - 1;
    if (!write) {
        const int function = digit == 0 ? 1 : digit == 1 ? 2 : digit == 3 ? 4 : 3;
        ++functions_[function];
        return readsRight(asked, digit, registers, start);
    }
    const bool one = asked.data.size() == (registers ? 2 : 1) && asked.field1 == 0;
    ++functions_[registers ? (one ? 6 : 16) : (one ? 5 : 15)];
    applyWrite(asked, registers, start);
    const Got got = host_.write(asked);
    if (got.answers == 1 && got.status == 0 && got.data == asked.data)
        return true;
    complaint_ =
        QString(QLatin1String("write to %1: status %2")).arg(asked.address, code(got.status));
    return false;
}

} // namespace interop
