#include <QString>

namespace knjige {

// The component's version as the host may show it in an about box.
QString componentVersion() { return QStringLiteral("17.0"); }

} // namespace knjige
