"""The device of the interoperability tests on pymodbus.

Usage: pymodbus_server.py tcp | pymodbus_server.py rtu PORT

Says "ready PORT" when it serves (PORT is 0 on a serial line), and ends when its input ends.
"""
import asyncio
import logging
import sys

from pymodbus.datastore import (
    ModbusSequentialDataBlock,
    ModbusServerContext,
    ModbusSlaveContext,
)
from pymodbus.pdu import ExceptionResponse
from pymodbus.server.async_io import ModbusSerialServer, ModbusTcpServer
from pymodbus.transaction import ModbusRtuFramer, ModbusSocketFramer

STATION = 1
AREA_SIZE = 2500
EXCEPTIONS_AT = 9000


def bits(digit):
    return ModbusSequentialDataBlock(
        0, [(a * 7 + a // 11 + digit) % 3 == 0 for a in range(AREA_SIZE)]
    )


def registers(digit):
    return ModbusSequentialDataBlock(
        0, [(a * 257 + digit * 4099 + 17) & 0xFFFF for a in range(AREA_SIZE)]
    )


class Device(ModbusSlaveContext):
    """Refuses the addresses that stand for exceptions, and remembers which it was."""

    exception = 0

    def validate(self, fc_as_hex, address, count=1):
        self.exception = max(0, address - EXCEPTIONS_AT)
        return super().validate(fc_as_hex, address, count)


def make_server(arguments):
    device = Device(
        co=bits(0), di=bits(1), ir=registers(3), hr=registers(4), zero_mode=True
    )

    def manipulate(response):
        if isinstance(response, ExceptionResponse) and device.exception:
            response.exception_code = device.exception
        return response, False

    context = ModbusServerContext(slaves={STATION: device}, single=False)
    settings = {
        "response_manipulator": manipulate,
        "broadcast_enable": True,
        "ignore_missing_slaves": True,
    }
    if arguments[0] == "rtu":
        return ModbusSerialServer(
            context, ModbusRtuFramer, port=arguments[1], baudrate=115200, **settings
        )
    return ModbusTcpServer(
        context, ModbusSocketFramer, address=("127.0.0.1", 0), **settings
    )


async def end_of_input():
    loop = asyncio.get_running_loop()
    ended = loop.create_future()

    def look():
        if not sys.stdin.buffer.read(1):
            loop.remove_reader(sys.stdin)
            ended.set_result(None)

    loop.add_reader(sys.stdin, look)
    await ended


async def main(arguments):
    logging.disable(logging.CRITICAL)
    server = make_server(arguments)
    port = 0
    if arguments[0] == "rtu":
        await server.start()
        serving = asyncio.create_task(server.serve_forever())
    else:
        serving = asyncio.create_task(server.serve_forever())
        while server.server is None:
            await asyncio.sleep(0.01)
        port = server.server.sockets[0].getsockname()[1]
    print("ready", port, flush=True)
    await end_of_input()
    serving.cancel()


asyncio.run(main(sys.argv[1:]))
