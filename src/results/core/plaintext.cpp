#include "plaintext.h"

namespace plaintext
{

QString folded(const QString& text)
{
    QString plain;
    for (const QChar c : text.simplified().normalized(QString::NormalizationForm_D))
        if (c.category() != QChar::Mark_NonSpacing)
            plain += c.toLower();
    return plain;
}

void appendCsvRow(QString& text, const QStringList& cells)
{
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (i > 0)
            text += u';';
        const QString& cell = cells[i];
        // Unquoted fields are read back trimmed: blanks at either end are quoted too.
        if (!cell.contains(u';') && !cell.contains(u'"') && !cell.contains(u'\n') &&
            !cell.contains(u'\r') && cell == cell.trimmed()) {
            text += cell;
            continue;
        }
        QString quoted = cell;
        quoted.replace(u'"', QStringLiteral("\"\""));
        text += u'"' + quoted + u'"';
    }
    text += QStringLiteral("\r\n");
}

QByteArray csv(const QList<QStringList>& rows)
{
    QString text;
    for (const QStringList& row : rows)
        appendCsvRow(text, row);
    return "\xEF\xBB\xBF" + text.toUtf8();
}

} // namespace plaintext
