#include "session/DatabaseBackend.h"

namespace knjige {

std::unique_ptr<DatabaseBackend> openOdbcBackend(const QString&, QString* error)
{
    *error = QStringLiteral("not yet");
    return nullptr;
}

} // namespace knjige
