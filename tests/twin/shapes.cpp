#include "cloud/drv_tovik_iot.h"
#include "cloud/tovik_iot.h"
#include "framework/driver_basic.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"

#include <QMetaMethod>
#include <QMetaObject>
#include <QMetaProperty>

namespace {

const char* kindOf(const QMetaMethod& method)
{
    switch (method.methodType()) {
    case QMetaMethod::Signal:
        return "signal ";
    case QMetaMethod::Slot:
        return "slot ";
    default:
        return "other ";
    }
}

QByteArray signatureOf(const QMetaMethod& method)
{
#if QT_VERSION < 0x050000
    return QMetaObject::normalizedSignature(method.signature());
#else
    return QMetaObject::normalizedSignature(method.methodSignature());
#endif
}

void sayShape(const QMetaObject& shape)
{
    section(shape.className());
    say(QByteArray("derives from ") + (shape.superClass() ? shape.superClass()->className() : "-"));
    for (int i = shape.methodOffset(); i < shape.methodCount(); ++i) {
        const QMetaMethod method = shape.method(i);
        QByteArray names;
        const QList<QByteArray> parameters = method.parameterNames();
        for (int j = 0; j < parameters.size(); ++j)
            names += ' ' + parameters.at(j);
        say(kindOf(method) + signatureOf(method) + names);
    }
    for (int i = shape.propertyOffset(); i < shape.propertyCount(); ++i)
        say(QByteArray("property ") + shape.property(i).typeName() + ' ' +
            shape.property(i).name());
}

} // namespace

void twinShapes()
{
    sayShape(DrvEthernet::staticMetaObject);
    sayShape(DrvSerial::staticMetaObject);
    sayShape(DrvInterface::staticMetaObject);
    sayShape(DriverBasic::staticMetaObject);
    sayShape(TovikIot::staticMetaObject);
    sayShape(DrvTovikIot::staticMetaObject);
}
