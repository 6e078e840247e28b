#include "ui/cell_editor.h"

#include <QKeyEvent>

#include "center/cell_rules.h"
#include "ui/composition.h"
#include "ui/qt_text.h"

namespace vicenter::ui {

namespace {

constexpr int kChoicesShown = 6;

}  // namespace

ColumnValidator::ColumnValidator(int column, QObject* parent) : QValidator(parent), column_(column) {}

QValidator::State ColumnValidator::validate(QString& text, int& /*position*/) const {
    const std::string plain = FromQt(text);
    if (center::CheckTypedText(column_, plain) == center::TextVerdict::Taken) return Acceptable;
    return center::MayBecomeTypedText(column_, plain) ? Intermediate : Invalid;
}

CellEditor::CellEditor(int column, QWidget* parent) : QLineEdit(parent), column_(column) {
    setObjectName(QStringLiteral("cellEditor"));
    setFrame(false);
    setTextMargins(1, 0, 1, 0);
    setValidator(new ColumnValidator(column, this));
    new Composition(*this);
    if (center::Column(column).rightAligned) setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connect(this, &QLineEdit::inputRejected, this, [this] {
        const std::string now = FromQt(text());
        center::TextVerdict verdict = center::CheckTypedText(column_, now);
        // The text as it stands is fine; what was refused is the addition.
        if (verdict == center::TextVerdict::Taken) verdict = center::TextVerdict::BadCharacter;
        emit textRejected(ToQt(center::VerdictText(verdict, column_)));
    });
}

DirectionEditor::DirectionEditor(QWidget* parent) : QComboBox(parent) {
    setObjectName(QStringLiteral("directionEditor"));
    setFrame(false);
    setEditable(false);
    setMaxVisibleItems(kChoicesShown);
    addItem(QString());
    addItem(ToQt(center::kDebit));
    addItem(ToQt(center::kCredit));
}

QString DirectionForKey(const QString& typed) {
    if (typed.compare(u'j', Qt::CaseInsensitive) == 0 || typed == ToQt(center::kDebit))
        return ToQt(center::kDebit);
    if (typed.compare(u'd', Qt::CaseInsensitive) == 0 || typed == ToQt(center::kCredit))
        return ToQt(center::kCredit);
    return {};
}

void DirectionEditor::keyPressEvent(QKeyEvent* event) {
    const QString choice = DirectionForKey(event->text());
    if (!choice.isNull()) {
        setCurrentIndex(findText(choice));
        return;
    }
    QComboBox::keyPressEvent(event);
}

}  // namespace vicenter::ui
