#include "benchmarks/plain_configuration.h"

namespace bench {

QDataStream& operator>>(QDataStream& stream, PlainItem& item)
{
    return stream >> item.name >> item.dataitem_id >> item.type >> item.length >> item.value >>
           item.cloud_status >> item.alert >> item.update_time >> item.marked;
}

QDataStream& operator>>(QDataStream& stream, PlainConfiguration& configuration)
{
    return stream >> configuration.aux_flag >> configuration.host >> configuration.aux_value >>
           configuration.project >> configuration.email >> configuration.password >>
           configuration.groups >> configuration.dataitems;
}

} // namespace bench
