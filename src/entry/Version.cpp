#include "entry/BookClasses.h"

namespace knjige::entry
{

QString componentVersion()
{
    return QStringLiteral("17.0");
}

} // namespace knjige::entry
