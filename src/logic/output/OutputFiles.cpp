// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "logic/output/OutputFiles.h"

#include "imagelib/io/MHdf5Writer.h"
#include "imagelib/io/MImageWriter.h"
#include "imagelib/io/formats/base/AtomicFile.h"
#include "imagelib/io/formats/base/Cancellation.h"
#include "logic/output/StagingFolder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>

#include <string>

using namespace morvend;
using namespace morvend::imglib;

namespace {

bool cancelled()
{
    try {
        checkCancelled();
    } catch (const MTerminateException&) {
        return true;
    }
    return false;
}

/// Ends the packing of a picture that is no longer wanted. No exception may pass the libraries that
/// write to it.
class CancellableBuffer : public QBuffer {
protected:
    qint64 writeData(const char* data, qint64 count) override
    {
        return cancelled() ? -1 : QBuffer::writeData(data, count);
    }
};

[[noreturn]] void cannotWrite(const QString& fileName)
{
    throw MNoFileAccessException("Cannot write to " + fileName.toStdString());
}

std::string localName(const QString& path) { return QFile::encodeName(path).toStdString(); }

/// The data files of an HDF5 series stand beside the file that was named, and nobody was asked
/// about them: they are replaced only along with their own series.
class ForeignData {
public:
    explicit ForeignData(const std::string& master)
        : _master(master)
        , _replacesSeries(_exists(master) && !_hasOtherMaster(master))
    {}

    void check(const std::string& place) const
    {
        if (place != _master && !_replacesSeries && _exists(place))
            throw MBadParameterException(
                "The data would replace a file that may belong to another series; choose another "
                "name: " +
                place);
    }

private:
    static bool _exists(const std::string& path)
    {
        return QFileInfo::exists(QFile::decodeName(path.c_str()));
    }
    /// "x.h5" and "x_master.h5" have data files of the same names.
    static bool _hasOtherMaster(const std::string& master)
    {
        const QFileInfo file(QFile::decodeName(master.c_str()));
        const QString stem = file.completeBaseName();
        const QString ending = QStringLiteral("_master");
        const QString other = stem.endsWith(ending) ? stem.chopped(ending.size()) : stem + ending;
        return file.dir().exists(other + '.' + file.suffix());
    }

    std::string _master;
    bool _replacesSeries;
};

void saveHdf5(const MImage& image, const std::string& path)
{
    const ForeignData foreign(path);
    const StagingFolder staging(path);
    {
        MHdf5Writer writer(staging.path(), 1, image.optionalData().nexusTree(), MCompression::ALL);
        checkCancelled();
        writer.write(image);
        writer.flush();
    }
    checkCancelled();
    staging.publish([&foreign](const std::string& place) { foreign.check(place); });
}

}  // namespace

void output::writeBytes(const QByteArray& bytes, const QString& fileName)
{
    if (fileName.isEmpty())
        cannotWrite(fileName);
    try {
        AtomicFile file(localName(fileName));
        file.write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        file.commit();
    } catch (const MTerminateException&) {
        throw;
    } catch (const MException&) {
        cannotWrite(fileName);
    }
}

void output::writePicture(const QImage& picture, const QString& fileName, const QString& format)
{
    CancellableBuffer packed;
    packed.open(QIODevice::ReadWrite);
    const bool written = QImageWriter(&packed, format.toLatin1()).write(picture);
    checkCancelled();
    if (!written)
        cannotWrite(fileName);
    writeBytes(packed.data(), fileName);
}

void output::exportImage(const ImageSnapshot& snapshot, const QString& fileName,
                         const QString& format, const MRect& legend,
                         const pictures::Progress& progress)
{
    if (snapshot.image.empty())
        return;
    writePicture(
        pictures::withLegend(pictures::ofImage(snapshot, progress), snapshot.contrast, legend),
        fileName, format);
}

void output::exportView(const QImage& picture, const ContrastData& contrast,
                        const QString& fileName, const QString& format, const MRect& legend)
{
    writePicture(pictures::withLegend(picture, contrast, legend), fileName, format);
}

void output::saveAs(const MImage& image, const QString& fileName, const QString& extension)
{
    if (image.empty())
        return;
    const std::string path = localName(QDir::toNativeSeparators(fileName));
    const QString kind = extension.toLower();
    if (kind == QLatin1String("cbf"))
        MImageWriter::write(image, path, MImageWriter::CBF);
    else if (kind == QLatin1String("tif") || kind == QLatin1String("tiff"))
        MImageWriter::write(image, path, MImageWriter::TIFF);
    else if (kind == QLatin1String("h5") || kind == QLatin1String("hdf5"))
        saveHdf5(image, path);
    else
        throw MBadParameterException("Unrecognized file format");
}
