#include "session/db/SqliteLocks.h"

namespace knjige::db
{

// Windows locks belong to the handle that took them: closing another handle of the
// same file leaves them in place.
void keepSqliteLocksThroughForeignCloses() { }

} // namespace knjige::db
