#!/usr/bin/env python3
"""Writes the inputs with which the fuzz targets start into fuzz/corpus.

They are what the unit tests use: recorded streams of stored configurations, replies as the service
sends them, and Modbus frames. Each has the bytes in front with which its target chooses its settings.
Inputs that were found later and stand beside them stay.
"""
import json
import struct
from pathlib import Path

FUZZ = Path(__file__).resolve().parent
RECORDED = FUZZ.parent / "tests/property/golden"
TYPES = ["Bit", "16Bit-BCD", "16Bit-INT", "16Bit-UINT", "16Bit-HEX", "32Bit-BCD", "32Bit-INT",
         "32Bit-UINT", "32Bit-HEX", "32Bit-FLOAT", "String"]
VALUES = [True, 1234, -2, 65535, "00fF", 12345678, -2147483648, 4294967295, "deadbeef", -12.625,
          "Gr\u00fc\u00dfe \u0000 \"/\\\""]


def write(target, name, data):
    folder = FUZZ / "corpus" / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data)


def text(value, order):
    return struct.pack(order + "I", 2 * len(value)) + \
        value.encode("utf-16-be" if order == ">" else "utf-16-le")


def sized(data, order):
    return struct.pack(order + "I", len(data)) + data


def item(value, order):
    """A stored data item whose value is these bytes, its type's number among them."""
    return (text("Temp", order) + text("X", order) + text("16Bit-INT", order) +
            struct.pack(order + "i", 1) + value +
            struct.pack(order + "i?i?", 0, False, 1700000000, True))


def variant_values(order):
    """Values of those types that the recorded streams do not have, as of Qt 5."""
    def tag(number, null=0):
        return struct.pack(order + "Ib", number, null)
    count = struct.pack(order + "I", 2)
    number = tag(2) + struct.pack(order + "i", 7)
    key = text("k", order)
    return {
        "longlong": tag(4) + struct.pack(order + "q", -5),
        "double": tag(6) + struct.pack(order + "d", 0.1),
        "char": tag(7) + struct.pack(order + "H", 0x263A),
        "map": tag(8) + count + key + number + text("l", order) + number,
        "list": tag(9) + count + number + tag(9) + count + number + tag(0, 1),
        "texts": tag(11) + count + key + struct.pack(order + "I", 0xFFFFFFFF),
        "date": tag(14) + struct.pack(order + "q", 2459000),
        "time": tag(15) + struct.pack(order + "I", 1000),
        "datetime": tag(16) + struct.pack(order + "qIb", 2459000, 1000, 1),
        "offset": tag(16) + struct.pack(order + "qIbi", 2459000, 1000, 2, 3600),
        "zone": tag(16) + struct.pack(order + "qIb", 2459000, 1000, 3) +
        text("Europe/Berlin", order),
        "own_zone": tag(16) + struct.pack(order + "qIb", 2459000, 1000, 3) +
        text("OffsetFromUtc", order) + text("Own", order) + struct.pack(order + "i", 7200) +
        text("n", order) + text("O", order) + struct.pack(order + "i", 0) + text("", order),
        "zone_of_nul": tag(16) + struct.pack(order + "qIb", 2459000, 1000, 3) +
        text("OffsetFromUtc", order) + text("\0", order) + bytes(20),
        "url": tag(17) + sized(b"https://u@xn--hst-sna.example:8/a%20b?c#d", order),
        "locale": tag(18) + text("de_AT", order),
        "rectangle": tag(19) + struct.pack(order + "4i", 1, -2, 3, 4),
        "rectangle_real": tag(20) + struct.pack(order + "4d", 0.1, -2, 3, 4),
        "size": tag(21) + struct.pack(order + "2i", 3, -4),
        "size_real": tag(22) + struct.pack(order + "2d", 0.1, -4),
        "line": tag(23) + struct.pack(order + "4i", 1, -2, 3, 4),
        "line_real": tag(24) + struct.pack(order + "4d", 0.1, -2, 3, 4),
        "point": tag(25) + struct.pack(order + "2i", 70000, -4),
        "point_real": tag(26) + struct.pack(order + "2d", 0.1, -4),
        "expression": tag(27) + text("^(\\d{1,3}\\.){3}[^a-z]*$", order) + b"\0\0\0",
        "wildcard": tag(27) + text("*.[ch]", order) + b"\1\1\0",
        "uuid": tag(30) + struct.pack(order + "IHH", 1, 2, 3) + b"12345678",
        "uuid_by_name": tag(1024) + sized(b"QUuid\0", order) +
        struct.pack(order + "IHH", 1, 2, 3) + b"12345678",
        "perl_expression": tag(44) + text("(a+)+$", order) + struct.pack(order + "I", 1),
        "some_bits": tag(13) + struct.pack(order + "I", 11) + b"\x08\x04",
        "hash": tag(28) + count + key + number + text("l", order) + number,
        "null": tag(10, 1) + struct.pack(order + "I", 0xFFFFFFFF),
        # What once took the process with it, or memory without end.
        "deep_list": (tag(9) + struct.pack(order + "I", 1)) * 60,
        "deep_map": (tag(8) + struct.pack(order + "I", 1) + key) * 40,
        "variant_in_variant": tag(41) * 100,
        "count_of_texts": tag(11) + struct.pack(order + "I", 0x10000000),
        "count_of_list": tag(9) + struct.pack(order + "I", 0x7FFFFFFF),
        "count_of_map": tag(8) + struct.pack(order + "I", 0x7FFFFFFF),
        "expression_of_copies": tag(27) + text("((a{99}){99}){99}", order) + b"\0\0\0",
        "expression_ahead": tag(27) + text("(?=" * 30, order) + b"\0\0\0",
        "bits": tag(13) + struct.pack(order + "I", 0x7FFFFFFF),
        "image": tag(70) + struct.pack(order + "I", 1) + b"\x89PNG\r\n\x1a\n",
        "named_zone": tag(16) + struct.pack(order + "qIb", 2459000, 1000, 3) + text("x/y", order),
        "no_zone": tag(16) + struct.pack(order + "qIb", 2459000, 1000, 0x53),
        "record": tag(1024) + struct.pack(order + "I", 17) + b"PropertyTovikIot\0" + b"\0" * 40,
    }


def values_of_qt3(order):
    """Values with the numbers of types that Qt 3 had."""
    def number(kind, form, *fields):
        return struct.pack(order + "I" + form, kind, *fields)
    return {
        "qt3_map": number(1, "I", 1) + text("k", order) + number(16, "i", 7),
        "qt3_list": number(2, "I", 2) + number(18, "b", 1) + number(19, "d", 0.1),
        "qt3_texts": number(4, "I", 1) + text("k", order),
        "qt3_rectangle": number(8, "4i", 1, 2, 3, 4),
        "qt3_datetime": number(28, "II", 2459000, 1000),
        "qt3_bytes": number(29, "") + sized(b"ab", order),
        "qt3_bits": number(30, "IB", 3, 5),
        "qt3_long": number(33, "q", 5),
        "qt3_colours": number(12, "I", 0),
    }


def streams():
    for recorded in sorted(RECORDED.glob("*.stream")):
        kind, version, order = recorded.stem.split("-")
        settings = bytes([int(version[1:]) - 1, 1 if order == "le" else 0, 0])
        data = recorded.read_bytes()
        # A part of the large ones: inputs that libFuzzer can change quickly.
        write("stream", recorded.stem, settings + (data[:900] if kind == "plant" else data))
    for order, bit in ((">", 0), ("<", 1)):
        for name, value in variant_values(order).items():
            write("stream", f"{name}-{'le' if bit else 'be'}", bytes([18, bit, 2]) +
                  item(value, order))
        for name, value in values_of_qt3(order).items():
            write("stream", f"{name}-{'le' if bit else 'be'}", bytes([5, bit, 2]) +
                  item(value, order))


def replies():
    def reply(**members):
        return json.dumps(dict(errorcode=0, **members), separators=(",", ":")).encode()
    group = dict(group_id="g1", name="Boiler \u00fc", location="Hall 2", ddLocation="1",
                 alert=True, permission="RW")
    items = [dict(name=f"n{i}", dataitem_id=f"d{i}", type=name, length=1, value=value,
                  cloud_status=1, alert=False, update_time=1700000000)
             for i, (name, value) in enumerate(zip(TYPES, VALUES))]
    write("reply", "login", b"\1" + reply(token="0123456789abcdef"))
    write("reply", "write", b"\0" + reply())
    for name, text_of in (("refused", b'{"errorcode":3,"message":"no"}'), ("empty", b""),
                          ("no_object", b"[]"), ("number", b"5"), ("cut", b'{"errorcode":0'),
                          ("no_code", b"{}"), ("null_code", b'{"errorcode":null}'),
                          ("fraction", b'{"errorcode":-1.7} x'),
                          ("deep", b'{"errorcode":0,"a":' + b'{"a":' * 98 + b"0" + b"}" * 99),
                          ("deepest", b'{"errorcode":0,"a":' + b'[' * 99 + b"]" * 99 + b"}"),
                          ("too_deep", b'{"errorcode":0,"a":' + b'{"a":' * 100 + b"0" +
                           b"}" * 101),
                          ("beyond_double", b'{"errorcode":1e999}'),
                          ("nul", b'{"errorcode":0,"token":"a\\u0000b"}'),
                          ("not_utf8", b'{"errorcode":0,"token":"\xff\xc3"}')):
        write("reply", name, b"\1" + text_of)
    write("groups", "one", reply(Number=1, groups=[group]))
    write("groups", "two", reply(Number=2, groups=[group, dict(group, alert=None, name=7)]))
    write("groups", "no_id", reply(Number=1, groups=[dict(group, group_id="")]))
    write("groups", "no_name", reply(Number=1, groups=[dict(group, name="")]))
    write("groups", "none", reply(Number=0, groups=[]))
    write("groups", "no_object", reply(Number=1, groups=[[]]))
    write("groups", "no_array", reply(Number=1, groups={}))
    write("dataitems", "all_types", reply(Number=11, dataitems=items))
    for one in items:
        write("dataitems", one["type"], reply(Number=1, dataitems=[one]))
    for member, value in (("name", ""), ("dataitem_id", ""), ("type", "64Bit"), ("value", None)):
        write("dataitems", f"odd_{member}",
              reply(Number=1, dataitems=[dict(items[2], **{member: value})]))
    write("dataitems", "ascii_string", reply(Number=1, dataitems=[dict(items[10],
                                                                       type="Ascii String")]))
    write("dataitems", "no_object", reply(Number=1, dataitems=[5]))
    for i, (name, value) in enumerate(zip(TYPES, VALUES)):
        write("value", name, bytes([i, 80]) + reply(value=value))
    write("value", "large", bytes([2, 0]) + reply(value=1e308))


def host_bytes():
    for i, name in enumerate(TYPES):
        for data in (b"", b"\x01", b"\x34\x12", b"\xab\xcd\xef\x99", b"HI\0A" * 4):
            write("host_bytes", f"{name}-{len(data)}", bytes([i, 0, 20]) + data)
    write("host_bytes", "name", bytes([11, 0, 0]) + b"16Bit-INT")
    write("host_bytes", "not_a_number", bytes([9, 0, 0]) + b"\1\0\xa0\x7f")


def protocol():
    for operation in range(11):
        write("protocol", f"{operation}-text", bytes([operation]) + b"\0\0\0\1-12fF zG\0")
        write("protocol", f"{operation}-bytes", bytes([operation]) + bytes(range(24)))
        write("protocol", f"{operation}-ones", bytes([operation]) + b"\xff" * 12)
        write("protocol", f"{operation}-elements", bytes([operation, 1, 0, 1]) + bytes(range(32)))
    write("protocol", "number_as_text", bytes([3, 11, 6]) + struct.pack(">i", -5))
    write("protocol", "text_as_number", bytes([4, 17]) + b"12fF\0" + b"99")
    write("protocol", "bcd", bytes([5]) + struct.pack(">iii", 12345678, 16, 10))


def checksum(frame):
    crc = 0xFFFF
    for byte in frame:
        crc ^= byte
        for _ in range(8):
            crc = crc >> 1 ^ 0xA001 if crc & 1 else crc >> 1
    return struct.pack("<H", crc)


def modbus():
    station = 17
    requests = {  # choice of the function, start, count less one; the PDU that answers
        "coils": (0, 16, 9, b"\x01\x02\xcd\x01"),
        "inputs": (1, 16, 0, b"\x02\x01\x01"),
        "registers": (2, 16, 1, b"\x03\x04\x12\x34\x56\x78"),
        "wide_registers": (0x2A, 16, 3, b"\x03\x08" + bytes(range(8))),
        "input_registers": (3, 16, 0, b"\x04\x02\x12\x34"),
        "write_coil": (5 - 1, 16, 0, b"\x05\x00\x10\x00\x00"),
        "write_register": (5, 16, 0, b"\x06\x00\x10\x01\x01"),
        "write_coils": (6, 16, 9, b"\x0f\x00\x10\x00\x0a"),
        "write_registers": (7, 16, 1, b"\x10\x00\x10\x00\x02"),
        "exception": (2, 16, 1, b"\x83\x02"),
        "other_function": (2, 16, 1, b"\x04\x04\x12\x34\x56\x78"),
        "too_short": (2, 16, 1, b"\x03\x02\x12\x34"),
        "too_long": (2, 16, 0, b"\x03\x02\x12\x34\x56\x78"),
    }
    for name, (choice, start, count, pdu) in requests.items():
        request = struct.pack(">BBHH", choice, station, start, count)
        write("modbus_pdu", name, request + pdu)
        frame = bytes([station]) + pdu
        frame += checksum(frame)
        write("modbus_rtu", name, request + b"\xff" + frame)
        write("modbus_rtu", name + "-noise", request + b"\2" + b"\x11\x03" + frame[:-1] + frame)
        for transaction in (0, 1):
            tcp = struct.pack(">HHHB", transaction + 1, 0, len(pdu) + 1, station) + pdu
            late = b"\5" + struct.pack(">HHB", 1, 0, 0) if transaction else b""
            write("modbus_tcp", f"{name}-{transaction}",
                  request + bytes([255, transaction]) + late + tcp)
        write("modbus_tcp", f"{name}-other_unit",
              request + b"\xff\0" + struct.pack(">HHHB", 1, 0, len(pdu) + 1, 9) + pdu)
        write("modbus_tcp", f"{name}-half_a_header", request + b"\xff\1\2\0\1" + tcp)
    for name, length in (("largest", 250), ("too_large", 252)):
        write("modbus_request", name, bytes([0, 0, 0, 0, 1]) + struct.pack(">HB", length, 0) +
              b"4x1")
        write("modbus_request", "write_" + name, bytes([5, 0, 0, 0, 1, 0, 0, (length - 4) // 9]) +
              b"\7" * ((length - 4) // 9) + b"4x1")
    for name, address in (("coil", b"0x17"), ("register", b"4x65536"), ("bit", b"3X00017.15"),
                          ("beyond", b"4x65537"), ("digits", "4x1\u0663".encode()),
                          ("plain", b"40001")):
        for write_it in (0, 1):
            write("modbus_request", f"{name}-{write_it}",
                  bytes([8 | write_it, 0, 4 * write_it, 2, 17, 0, 4, 4]) + b"\1\2\3\4" + address)


def der(tag, contents):
    size = len(contents)
    if size < 0x80:
        return bytes([tag, size]) + contents
    length = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(length)]) + length + contents


def certificate():
    """Of an Ed25519 key, with a signature that nobody checks."""
    algorithm = der(0x30, b"\x06\x03\x2b\x65\x70")
    name = der(0x30, der(0x31, der(0x30, b"\x06\x03\x55\x04\x03" + der(0x0C, b"service"))))
    validity = der(0x30, der(0x17, b"260101000000Z") + der(0x17, b"360101000000Z"))
    key = der(0x30, algorithm + der(0x03, b"\0" + bytes(range(32))))
    body = der(0x30, b"\x02\x01\x01" + algorithm + name + validity + name + key)
    return der(0x30, body + algorithm + der(0x03, b"\0" + bytes(64)))


def sessions():
    def session(version, cipher, *others):
        return der(0x30, b"\x02\x01\x01" + der(0x02, version) + der(0x04, cipher) +
                   der(0x04, bytes(32)) + der(0x04, bytes(range(48))) + b"".join(others))
    times = der(0xA1, der(0x02, b"\x65\0\0\0")) + der(0xA2, der(0x02, b"\x1c\x20"))
    peer = der(0xA3, certificate())
    context = der(0xA4, der(0x04, b""))
    ticket = der(0xA9, der(0x02, b"\x1c\x20")) + der(0xAA, der(0x04, bytes(range(160))))
    tls12, tls13 = (b"\x03\x03", b"\xc0\x2f"), (b"\x03\x04", b"\x13\x02")
    write("session", "tls12", session(*tls12, times, peer, context, ticket))
    write("session", "tls13", session(*tls13, times, peer, context, ticket,
                                      der(0xAE, der(0x02, b"\x12\x34"))))
    write("session", "no_certificate", session(*tls13, times, context, ticket))
    write("session", "short", session(*tls12, peer))
    write("session", "bytes_for_a_certificate",
          session(*tls12, times, der(0xA3, bytes(60)), context))
    write("session", "two_certificates", session(*tls12, times, peer, peer))
    write("session", "wrong_order", session(*tls12, peer, times))
    write("session", "other_element", session(*tls12, times, peer, der(0x04, b"")))
    write("session", "something_behind", session(*tls12, times, peer) + b"x")
    write("session", "no_sequence", der(0x31, session(*tls12, times, peer)[3:]))


streams()
replies()
host_bytes()
protocol()
modbus()
sessions()
