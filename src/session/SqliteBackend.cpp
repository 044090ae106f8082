#include "session/DatabaseBackend.h"

namespace knjige {

std::unique_ptr<DatabaseBackend> openSqliteBackend(const QString&, bool, QString* error)
{
    *error = QStringLiteral("not yet");
    return nullptr;
}

} // namespace knjige
