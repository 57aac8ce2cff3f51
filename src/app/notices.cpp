#include "notices.h"

#include "app/look.h"

#include <QFont>
#include <QLabel>
#include <QTimer>

namespace
{

QLabel* notice(QWidget* area, const QString& name, const QColor& back)
{
    auto* l = new QLabel(area);
    l->setObjectName(name);
    l->setWordWrap(true);
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(8);
    font.setBold(true);
    l->setFont(font);
    l->setFocusPolicy(Qt::NoFocus);
    l->setAttribute(Qt::WA_TransparentForMouseEvents);
    look::setColours(l, back, QColor(100, 0, 0));
    l->setVisible(false);
    return l;
}

} // namespace

Notices::Notices(QWidget* area, QWidget* under)
    : QObject(area), below(under), aviso(notice(area, QStringLiteral("aviso"), {255, 220, 120})),
      avisoDiario(notice(area, QStringLiteral("avisoDiario"), {255, 200, 200})),
      avisoTimer(new QTimer(this))
{
    avisoTimer->setSingleShot(true);
    avisoTimer->setInterval(15000);
    connect(avisoTimer, &QTimer::timeout, aviso, &QLabel::hide);
}

void Notices::place(QLabel* l, const QString& text, int top)
{
    QWidget* area = l->parentWidget();
    l->setText(text);
    const int h = l->heightForWidth(area->width() - 8);
    l->setGeometry(4, top, area->width() - 8, qMax(h, 24));
    l->raise();
    l->show();
}

void Notices::show(const QString& text)
{
    // Under the kept notice when that one is up.
    const int top = avisoDiario->isHidden() ? below->geometry().bottom() + 4
                                            : avisoDiario->geometry().bottom() + 2;
    place(aviso, text, top);
    avisoTimer->start();
}

void Notices::keep(const QString& text)
{
    place(avisoDiario, text, below->geometry().bottom() + 4);
    if (!aviso->isHidden())
        aviso->move(aviso->x(), avisoDiario->geometry().bottom() + 2);
}

void Notices::takeBack()
{
    avisoDiario->hide();
}
