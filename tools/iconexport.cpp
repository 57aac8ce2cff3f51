// The program's icon as PNG files for the desktop, in the hicolor theme's layout:
//   iconexport <folder> [size...]
// writes <folder>/<n>x<n>/apps/marvolendo.png for each size (16, 24, 32, 48, 64, 128 and 256
// when none is given). Run at build time with QT_QPA_PLATFORM=offscreen; needs no display.
#include "app/artwork.h"

#include <QDir>
#include <QGuiApplication>
#include <QPixmap>

#include <cstdio>
#include <vector>

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "uso: iconexport <carpeta> [tamano...]\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    std::vector<int> sizes;
    for (int i = 2; i < argc; ++i) {
        bool ok = false;
        const int size = QByteArray(argv[i]).toInt(&ok);
        if (!ok || size < 1 || size > 1024) {
            std::fprintf(stderr, "tamano no valido: %s\n", argv[i]);
            return 2;
        }
        sizes.push_back(size);
    }
    if (sizes.empty())
        sizes = {16, 24, 32, 48, 64, 128, 256};

    int failed = 0;
    for (const int size : sizes) {
        const QString sub = QStringLiteral("%1x%1/apps").arg(size);
        const QString file = folder.filePath(sub + QStringLiteral("/marvolendo.png"));
        if (!folder.mkpath(sub) || !artwork::appIconPixmap(size).save(file, "PNG")) {
            std::fprintf(stderr, "no se pudo escribir %s\n", qPrintable(file));
            ++failed;
        }
    }
    return failed == 0 ? 0 : 1;
}
