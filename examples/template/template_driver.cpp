#include "template_driver.h"

#include "framework/protocol_basic.h"

namespace {

const int most_significant_first = 0;
const int as_characters = 1;

const int answer_length = 8; // ":" station, value, CR

} // namespace

TemplateDriver::TemplateDriver(const QString& name, DrvSerial* serial, DrvEthernet* ethernet)
    : DriverBasic(name, serial, ethernet)
{}

const result_code::Words* TemplateDriver::resultCodes()
{
    static const result_code::Words words[] = {
        {bad_address, bad_address, "the address is no number from 0 to 65535"},
        {bad_length, bad_length, "a value is two bytes long"},
        {wrong_answer, wrong_answer, "the answer is no line of this protocol"},
        {bad_station, bad_station, "the station is no number from 0 to 255"},
        {device_refused, device_refused + 0xFFFF, "the device refuses with code"},
        {0, 0, nullptr}};
    return words;
}

// 1. What is to be sent? Append the frame to `request` and return the length of the answer. To
// refuse, set error_code_: nothing is sent then, and the host gets the code.
int TemplateDriver::request_build(E_CMD_DIR dir, QString address, int /*field1*/, int data_length,
                                  QByteArray* data, QByteArray* request, int station_no,
                                  int /*extra1*/, int /*extra2*/)
{
    bool is_number = false;
    const unsigned short register_number = address.toUShort(&is_number);
    if (!is_number) {
        error_code_ = bad_address;
        return 0;
    }
    if (station_no < 0 || station_no > 255) {
        error_code_ = bad_station;
        return 0;
    }
    if ((dir == CMD_READ ? data_length : data->size()) != 2) {
        error_code_ = bad_length;
        return 0;
    }
    request->append(':');
    ProtocolBasic::addNumber(*request, static_cast<unsigned char>(station_no), as_characters);
    request->append(dir == CMD_READ ? 'R' : 'W');
    ProtocolBasic::addNumber(*request, register_number, most_significant_first, as_characters);
    if (dir == CMD_WRITE)
        ProtocolBasic::addArray(*request, data->constData(), 2, 2, most_significant_first,
                                as_characters);
    request->append('\r');
    return answer_length;
}

// 2. Is the answer there? Say 0 when it is, or why not. `ready` is to tell whether there is
// anything to read on the link.
int TemplateDriver::request_send_wait(int /*sent_length*/, int expected_length, int* ready)
{
    return waitForBytes(expected_length, ready);
}

// 3. What does the answer say? Put what was read into `data`; return 0, or a code for the host.
int TemplateDriver::response_parse(E_CMD_DIR dir, QString /*address*/, int /*field1*/,
                                   int /*data_length*/, QByteArray* data, QByteArray* request,
                                   QByteArray* response, int /*station_no*/, int /*extra1*/,
                                   int /*extra2*/)
{
    const bool is_of_station = response->mid(1, 2) == request->mid(1, 2);
    if (!is_of_station || !response->endsWith('\r'))
        return wrong_answer;
    const QByteArray digits = response->mid(3, 4);
    if (response->startsWith('!'))
        return device_refused +
               ProtocolBasic::array2Number(digits, most_significant_first, as_characters);
    if (!response->startsWith(':'))
        return wrong_answer;
    if (dir == CMD_READ)
        ProtocolBasic::extractArray(*data, digits.constData(), digits.size(), 2,
                                    most_significant_first, as_characters);
    return 0;
}
