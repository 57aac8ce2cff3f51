// The sex of a runner as the entrants' file writes it: "M", "H", "hombre", "masculino"... or
// "F", "mujer", "femenino"..., case, accents and plurals aside. The classifications by sex, the
// categories and the awards read it through here.
#pragma once

#include <QString>

namespace sexes
{

enum class Sex { None, Male, Female };

Sex of(const QString& sexo);

// "Masculino", "Femenino"; empty for none.
QString name(Sex sex);

} // namespace sexes
