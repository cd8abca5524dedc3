#ifndef COMPAT_EXPORT_H
#define COMPAT_EXPORT_H

#include <QtGlobal>

/// \file
/// Which names the shared library shows.

/// Marks what the shared library shows to the host. Everything else is hidden: the library is
/// loaded into somebody else's process, whose symbols it must not collide with.
#define TOVIK_EXPORT Q_DECL_EXPORT

#endif
