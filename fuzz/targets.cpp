#include "fuzz/target.h"

namespace fuzz {

const Target targets[] = {
    {"stream", runStream},        {"reply", runReply},
    {"groups", runGroups},        {"dataitems", runDataitems},
    {"value", runValue},          {"host_bytes", runHostBytes},
    {"protocol", runProtocol},    {"modbus_request", runModbusRequest},
    {"modbus_pdu", runModbusPdu}, {"modbus_rtu", runModbusRtu},
    {"modbus_tcp", runModbusTcp}, {"session", runSession},
};

const int target_count = int(sizeof targets / sizeof targets[0]);

} // namespace fuzz
