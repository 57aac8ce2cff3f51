// The program's settings, kept from one start to the next: the options of the menus, the
// category table, how results are published. Never in the state file.
#pragma once

#include <QSettings>

class ProgramSettings final : public QSettings
{
public:
    ProgramSettings() : QSettings(QStringLiteral("Marvolendo"), QStringLiteral("Marvolendo")) {}
};
