#include "filename.h"

QString resolveFileName(const QString &fileName, const QString &includingFile)
{
    if (fileName.startsWith(u'/'))
        return fileName;
    const qsizetype slash = includingFile.lastIndexOf(u'/');
    const QString directory = slash > 0    ? includingFile.first(slash)
                              : slash == 0 ? QStringLiteral("/")
                                           : QStringLiteral(".");
    return directory + u'/' + fileName;
}
