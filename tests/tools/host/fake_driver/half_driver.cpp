#include <QtGlobal>

/// One entry point of two: a library that a host must refuse.
extern "C" Q_DECL_EXPORT quint32 drv_version()
{
    return 1;
}
