// Qt's own texts in Spanish: the buttons of the standard boxes ("Aceptar", "Cancelar"), the
// file dialog, the names of keys in the menus ("Supr"). Debian ships them in
// qt6-translations-l10n.
#pragma once

class QCoreApplication;

// Loads Qt's Spanish translations into the application; false when they are not installed
// (the standard texts then stay in English).
bool installSpanish(QCoreApplication& app);
