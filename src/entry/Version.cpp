#include "entry/BookClasses.h"

namespace knjige
{

QString componentVersion()
{
    return QStringLiteral("17.0");
}

} // namespace knjige
