#include "fileerror.h"

namespace fileerror
{

namespace
{

QString fromSystem(int code)
{
    switch (code) {
    case ENOSPC:
#ifdef EDQUOT
    case EDQUOT:
#endif
        return QStringLiteral("no queda espacio en el disco");
    case EFBIG:
        return QStringLiteral("el archivo ha llegado al tamaño máximo del disco");
    case EIO:
        return QStringLiteral("el disco no responde (error de entrada y salida)");
    case EACCES:
    case EPERM:
        return QStringLiteral("sin permiso de escritura");
    case EROFS:
        return QStringLiteral("el disco es de solo lectura");
    case ENOENT:
        return QStringLiteral("la carpeta o el archivo no existe");
    case ENOTDIR:
        return QStringLiteral("una parte de la ruta no es una carpeta");
    case EISDIR:
        return QStringLiteral("es una carpeta, no un archivo");
    case ENAMETOOLONG:
        return QStringLiteral("el nombre es demasiado largo");
    case EMFILE:
    case ENFILE:
        return QStringLiteral("hay demasiados archivos abiertos");
    case ENOMEM:
        return QStringLiteral("no queda memoria");
    case EBUSY:
#ifdef ETXTBSY
    case ETXTBSY:
#endif
        return QStringLiteral("el archivo está en uso");
    }
    return {};
}

// The causes that cut a write short without Qt reporting an error.
bool cutsWriteShort(int code)
{
    return code == ENOSPC || code == EFBIG || code == EIO
#ifdef EDQUOT
           || code == EDQUOT
#endif
        ;
}

QString fromKind(QFileDevice::FileError kind)
{
    switch (kind) {
    case QFileDevice::NoError:
        return QStringLiteral("el disco no admitió todos los datos; puede estar lleno");
    case QFileDevice::ReadError:
        return QStringLiteral("error de lectura");
    case QFileDevice::WriteError:
        return QStringLiteral("error de escritura");
    case QFileDevice::ResourceError:
        return QStringLiteral("faltan recursos del sistema (disco lleno o demasiados archivos "
                              "abiertos)");
    case QFileDevice::OpenError:
        return QStringLiteral("no se pudo abrir");
    case QFileDevice::PermissionsError:
        return QStringLiteral("sin permiso");
    case QFileDevice::RenameError:
        return QStringLiteral("no se pudo renombrar");
    case QFileDevice::RemoveError:
        return QStringLiteral("no se pudo borrar");
    case QFileDevice::ResizeError:
        return QStringLiteral("no se pudo cambiar el tamaño");
    case QFileDevice::CopyError:
        return QStringLiteral("no se pudo copiar");
    case QFileDevice::TimeOutError:
        return QStringLiteral("el disco tardó demasiado en responder");
    case QFileDevice::AbortError:
        return QStringLiteral("la operación se interrumpió");
    case QFileDevice::FatalError:
    case QFileDevice::UnspecifiedError:
    case QFileDevice::PositionError:
        break;
    }
    return QStringLiteral("error del sistema de archivos");
}

} // namespace

QString describe(const QFileDevice& file, int systemError)
{
    const QFileDevice::FileError kind = file.error();
    if (kind != QFileDevice::NoError || cutsWriteShort(systemError)) {
        const QString reason = fromSystem(systemError);
        if (!reason.isEmpty())
            return reason;
    }
    QString reason = fromKind(kind);
    if (kind != QFileDevice::NoError && systemError != 0)
        reason += QStringLiteral(" (código del sistema %1)").arg(systemError);
    return reason;
}

} // namespace fileerror
