#pragma once

#include <QtCore/qglobal.h>

// What the shared library shows a host: the book classes, their factory and the host
// services. Everything else is hidden, so a host can only reach the component through
// the surface it was designed for. Code linked statically (the program, the tests)
// sees every symbol and needs no decoration.
#if defined(KNJIGE_STATIC)
#define KNJIGE_EXPORT
#elif defined(KNJIGE_BUILDING_LIBRARY)
#define KNJIGE_EXPORT Q_DECL_EXPORT
#else
#define KNJIGE_EXPORT Q_DECL_IMPORT
#endif
