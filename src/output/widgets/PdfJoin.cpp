#include "output/widgets/PdfJoin.h"

#include <QFile>
#include <QIODevice>

#if defined(KNJIGE_HAVE_QPDF)
// The library's smart pointers are the standard ones; its old PointerHolder stays out.
#define POINTERHOLDER_TRANSITION 4
#include <exception>
#include <memory>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <vector>
#endif

namespace knjige::output
{
#if defined(KNJIGE_HAVE_QPDF)
namespace
{

// The writer's bytes into a Qt device; the first write that fails ends the writing
// with the device's reason. A file that took part of its buffer has no reason yet: the
// write that takes nothing gives it (a full disk), so the rest is tried once more.
class DevicePipeline : public Pipeline
{
public:
    explicit DevicePipeline(QIODevice& device)
        : Pipeline("knjige output", nullptr)
        , m_device(device)
    {
    }
    void write(unsigned char const* data, size_t len) override
    {
        for (qint64 done = 0; done < qint64(len);) {
            const qint64 written = m_device.write(reinterpret_cast<const char*>(data) + done, qint64(len) - done);
            if (written <= 0) {
                if (auto* file = qobject_cast<QFileDevice*>(&m_device))
                    file->flush();
                throw WriteFailed();
            }
            done += written;
        }
    }
    void finish() override { }

    struct WriteFailed {
    };

private:
    QIODevice& m_device;
};

} // namespace

bool canJoinPdfs()
{
    return true;
}

bool joinPdfs(const QStringList& parts, QIODevice& out, QString* error)
{
    try {
        QPDF joined;
        joined.emptyPDF();
        QPDFPageDocumentHelper pages(joined);
        // The parts are read again as the joined file is written: they stay open till then.
        std::vector<std::unique_ptr<QPDF>> read;
        for (const QString& part : parts) {
            auto pdf = std::make_unique<QPDF>();
            pdf->processFile(QFile::encodeName(part).constData());
            for (QPDFPageObjectHelper& page : QPDFPageDocumentHelper(*pdf).getAllPages())
                pages.addPage(page, false);
            read.push_back(std::move(pdf));
        }
        if (!read.empty()) {
            QPDFObjectHandle info = read.front()->getTrailer().getKey("/Info");
            if (info.isDictionary())
                joined.getTrailer().replaceKey("/Info", joined.copyForeignObject(info));
            QPDFObjectHandle metadata = read.front()->getRoot().getKey("/Metadata");
            if (metadata.isStream())
                joined.getRoot().replaceKey("/Metadata", joined.copyForeignObject(metadata));
        }
        DevicePipeline pipeline(out);
        QPDFWriter writer(joined);
        if (!read.empty())
            writer.setMinimumPDFVersion(read.front()->getPDFVersion());
        writer.setOutputPipeline(&pipeline);
        writer.setStreamDataMode(qpdf_s_preserve);
        writer.write();
        return true;
    } catch (const DevicePipeline::WriteFailed&) {
        *error = out.errorString();
        return false;
    } catch (const std::exception& e) {
        *error = QString::fromLocal8Bit(e.what());
        return false;
    }
}
#else
bool canJoinPdfs()
{
    return false;
}

bool joinPdfs(const QStringList&, QIODevice&, QString* error)
{
    *error = QStringLiteral("PDF datoteke se ne mogu spajati");
    return false;
}
#endif

} // namespace knjige::output
