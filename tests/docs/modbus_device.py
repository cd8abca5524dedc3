"""The Modbus device that the documents talk to: modbus_device.py tcp | rtu

Prints "ready PLACE", which is host and port or the name of a serial line, and serves until it is
ended. Every station has registers that count up from 100; writes are kept.
"""
import asyncio
import logging
import os
import sys
import tty

from pymodbus.datastore import (
    ModbusSequentialDataBlock,
    ModbusServerContext,
    ModbusSlaveContext,
)
from pymodbus.server.async_io import ModbusSerialServer, ModbusTcpServer
from pymodbus.transaction import ModbusRtuFramer, ModbusSocketFramer

STATIONS = [1, 3, 17]
AREA_SIZE = 100


def station():
    registers = [100 + a for a in range(AREA_SIZE)]
    bits = [a % 2 == 0 for a in range(AREA_SIZE)]
    return ModbusSlaveContext(
        co=ModbusSequentialDataBlock(0, list(bits)),
        di=ModbusSequentialDataBlock(0, list(bits)),
        ir=ModbusSequentialDataBlock(0, list(registers)),
        hr=ModbusSequentialDataBlock(0, list(registers)),
        zero_mode=True,
    )


async def serve_tcp(context):
    server = ModbusTcpServer(context, ModbusSocketFramer, address=("127.0.0.1", 0))
    serving = asyncio.create_task(server.serve_forever())
    while server.server is None:
        await asyncio.sleep(0.01)
    print(f"ready 127.0.0.1:{server.server.sockets[0].getsockname()[1]}", flush=True)
    await serving


async def serve_rtu(context):
    # Two pseudo terminals, joined here: each side opens one like a port of its own.
    sides = [os.openpty() for _ in range(2)]
    for master, slave in sides:
        tty.setraw(slave)
        os.set_blocking(master, False)
    (near, near_slave), (far, far_slave) = sides
    loop = asyncio.get_running_loop()
    loop.add_reader(near, lambda: os.write(far, os.read(near, 4096)))
    loop.add_reader(far, lambda: os.write(near, os.read(far, 4096)))
    server = ModbusSerialServer(
        context, ModbusRtuFramer, port=os.ttyname(far_slave), ignore_missing_slaves=True
    )
    await server.start()
    print(f"ready {os.ttyname(near_slave)}", flush=True)
    await server.serve_forever()


logging.disable(logging.CRITICAL)
asyncio.run(
    {"tcp": serve_tcp, "rtu": serve_rtu}[sys.argv[1]](
        ModbusServerContext(slaves={number: station() for number in STATIONS}, single=False)
    )
)
