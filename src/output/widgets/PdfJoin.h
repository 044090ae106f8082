#pragma once

#include <QString>
#include <QStringList>

class QIODevice;

namespace knjige::output
{

// Whether this build can join PDF files (it has the qpdf library).
bool canJoinPdfs();

// The pages of the PDF files `parts`, in order, as one PDF written to `out`. The pages'
// contents go over as they are, never decompressed or compressed again; the document's
// information (title, creator) is the first part's. False with *error on a part that
// cannot be read or a write to `out` that fails.
bool joinPdfs(const QStringList& parts, QIODevice& out, QString* error);

} // namespace knjige::output
