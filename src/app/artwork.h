// The pictures of the window, drawn by the program itself: the icons of the picture buttons
// and the finish-line picture shown in the bibs-and-times mode.
#pragma once

#include <QIcon>
#include <QPixmap>

namespace artwork
{

QIcon clearIcon();      // Command4: clear the race
QIcon saveAndEndIcon(); // Command5: save and end
QIcon exportIcon();     // Command6: write the results files
QIcon emptyListIcon();  // Command8: empty the start order
QIcon appIcon();        // the program's own icon
QPixmap finishLine();   // Image1, 500 x 300

// The program's icon drawn afresh on a square of size pixels (the desktop's icon files).
QPixmap appIconPixmap(int size);

} // namespace artwork
