#include "tests/support/meta_methods.h"

#include <QMetaMethod>

namespace {

QString kindOf(const QMetaMethod& method)
{
    const QString access = QLatin1String(method.access() == QMetaMethod::Private ? "private " : "");
    return access + QLatin1String(method.methodType() == QMetaMethod::Signal ? "signal" : "slot");
}

} // namespace

QStringList ownMethods(const QMetaObject& meta_object)
{
    QStringList methods;
    for (int i = meta_object.methodOffset(); i < meta_object.methodCount(); ++i) {
        const QMetaMethod method = meta_object.method(i);
        QStringList names;
        for (const QByteArray& name : method.parameterNames())
            names.append(QString::fromLatin1(name));
        const QString text = kindOf(method) + QLatin1Char(' ') +
                             QString::fromLatin1(method.methodSignature()) + QLatin1Char(' ') +
                             names.join(QLatin1Char(','));
        methods.append(text.trimmed());
    }
    return methods;
}
