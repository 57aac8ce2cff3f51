#include "runnerstatus.h"

#include <QStringList>

namespace runnerstatus
{

namespace
{

const char* const codes[] = {"C", "DNF", "DNS", "DSQ", "FC"};

// Lower case, without accents or dots.
QString folded(QStringView text)
{
    QString out;
    for (const QChar c : text.toString().normalized(QString::NormalizationForm_D)) {
        if (c.category() == QChar::Mark_NonSpacing || c == u'.')
            continue;
        out += c.toLower();
    }
    return out.simplified();
}

} // namespace

QString code(Kind kind)
{
    return QLatin1String(codes[int(kind)]);
}

std::optional<Kind> fromCode(QStringView text)
{
    for (int k = 0; k < 5; ++k)
        if (text == QLatin1String(codes[k]))
            return Kind(k);
    return std::nullopt;
}

Kind of(const Marks& marks, int bib, bool finished)
{
    const auto it = marks.constFind(bib);
    if (it != marks.cend())
        return it->kind;
    return finished ? Kind::Classified : Kind::DidNotStart;
}

QString label(Kind kind)
{
    switch (kind) {
    case Kind::Classified:
        return QStringLiteral("Clasificado");
    case Kind::DidNotFinish:
        return QStringLiteral("No terminado");
    case Kind::DidNotStart:
        return QStringLiteral("No salió");
    case Kind::Disqualified:
        return QStringLiteral("Descalificado");
    case Kind::OutOfTime:
        return QStringLiteral("Fuera de control");
    }
    return QString();
}

QString shortLabel(Kind kind)
{
    switch (kind) {
    case Kind::Classified:
        return QString();
    case Kind::DidNotFinish:
        return QStringLiteral("DNF");
    case Kind::DidNotStart:
        return QStringLiteral("DNS");
    case Kind::Disqualified:
        return QStringLiteral("DSQ");
    case Kind::OutOfTime:
        return QStringLiteral("F.C.");
    }
    return QString();
}

int listOrder(Kind kind)
{
    switch (kind) {
    case Kind::Classified:
        return 0;
    case Kind::DidNotFinish:
        return 1;
    case Kind::OutOfTime:
        return 2;
    case Kind::Disqualified:
        return 3;
    case Kind::DidNotStart:
        return 4;
    }
    return 5;
}

std::optional<Kind> parse(QStringView word)
{
    const QString w = folded(word);
    if (w == u"dnf" || w == u"no terminado" || w == u"no termino" || w == u"retirado" ||
        w == u"abandono" || w == u"nt")
        return Kind::DidNotFinish;
    if (w == u"dns" || w == u"no salio" || w == u"ns" || w == u"no presentado")
        return Kind::DidNotStart;
    if (w == u"dsq" || w == u"descalificado" || w == u"dq")
        return Kind::Disqualified;
    if (w == u"fc" || w == u"fuera de control" || w == u"fuera de tiempo")
        return Kind::OutOfTime;
    if (w == u"c" || w == u"clasificado")
        return Kind::Classified;
    return std::nullopt;
}

QByteArray encode(const Marks& marks)
{
    QByteArray out;
    for (auto it = marks.cbegin(); it != marks.cend(); ++it) {
        QString reason = it->reason;
        reason.replace(u'\t', u' ').replace(u'\r', u' ').replace(u'\n', u' ');
        out += QByteArray::number(it.key()) + '\t' + codes[int(it->kind)] + '\t' + reason.toUtf8() +
               "\r\n";
    }
    return out;
}

Marks decode(QByteArrayView bytes)
{
    Marks marks;
    for (const QByteArray& raw : bytes.toByteArray().split('\n')) {
        const QList<QByteArray> f = raw.trimmed().split('\t');
        if (f.size() < 2)
            continue;
        bool ok = false;
        const int bib = f[0].toInt(&ok);
        if (!ok || bib <= 0)
            continue;
        if (const std::optional<Kind> kind = fromCode(QString::fromLatin1(f[1])))
            marks.insert(bib, Mark{*kind, f.size() > 2 ? QString::fromUtf8(f[2]) : QString()});
    }
    return marks;
}

} // namespace runnerstatus
