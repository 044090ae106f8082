// Left to the Windows heap as it stands: no setting of it is known to pay here.
#include "output/widgets/PrintMemory.h"

namespace knjige::output
{

void KeptFreedMemory::allowInThisProcess() { }
KeptFreedMemory::KeptFreedMemory() = default;
KeptFreedMemory::~KeptFreedMemory() = default;

} // namespace knjige::output
