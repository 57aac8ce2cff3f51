#include "sexes.h"

#include "results/core/plaintext.h"

#include <QStringList>

namespace sexes
{

Sex of(const QString& sexo)
{
    static const QStringList male{QStringLiteral("m"),         QStringLiteral("h"),
                                  QStringLiteral("hombre"),    QStringLiteral("hombres"),
                                  QStringLiteral("masculino"), QStringLiteral("masculina"),
                                  QStringLiteral("masculinos")};
    static const QStringList female{QStringLiteral("f"),        QStringLiteral("mujer"),
                                    QStringLiteral("mujeres"),  QStringLiteral("femenino"),
                                    QStringLiteral("femenina"), QStringLiteral("femeninos"),
                                    QStringLiteral("femeninas")};
    const QString key = plaintext::folded(sexo);
    if (male.contains(key))
        return Sex::Male;
    if (female.contains(key))
        return Sex::Female;
    return Sex::None;
}

QString name(Sex sex)
{
    switch (sex) {
    case Sex::Male:
        return QStringLiteral("Masculino");
    case Sex::Female:
        return QStringLiteral("Femenino");
    case Sex::None:
        break;
    }
    return QString();
}

} // namespace sexes
