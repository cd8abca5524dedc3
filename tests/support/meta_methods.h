#ifndef TESTS_SUPPORT_META_METHODS_H
#define TESTS_SUPPORT_META_METHODS_H

#include <QMetaObject>
#include <QStringList>

/// The methods that a class itself declares, in order, as "signal Name(types) names": what hosts
/// connect to.
QStringList ownMethods(const QMetaObject& meta_object);

#endif
