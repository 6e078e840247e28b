#include "ui/grid/cell_editor.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <algorithm>

#include "center/editing/cell_rules.h"
#include "center/grid/columns.h"
#include "ui/look/qt_text.h"
#include "ui/run/composition.h"

namespace vicenter::ui {

namespace {

constexpr int kChoicesShown = 6;

}  // namespace

ColumnValidator::ColumnValidator(int column, QLineEdit& field) : SingleLine(field), column_(column) {}

QValidator::State ColumnValidator::Judge(const QString& text) const {
    refusal_ = center::TextVerdict::Taken;
    if (text.size() > static_cast<qsizetype>(center::kLongestKeptText)) {
        refusal_ = center::TextVerdict::TooLong;
    } else if (center::Column(column_).kind == center::CellKind::TemplateNumber) {
        const bool digits =
            std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
        if (!digits) refusal_ = center::TextVerdict::BadCharacter;
    }
    return refusal_ == center::TextVerdict::Taken ? Acceptable : Invalid;
}

CellEditor::CellEditor(int column, QWidget* parent)
    : QLineEdit(parent), column_(column), validator_(new ColumnValidator(column, *this)) {
    setObjectName(QStringLiteral("cellEditor"));
    setFrame(false);
    setTextMargins(1, 0, 1, 0);
    new Composition(*this);
    if (center::Column(column).rightAligned) setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    connect(this, &QLineEdit::inputRejected, this,
            [this] { emit textRejected(ToQt(center::VerdictText(validator_->LastRefusal(), column_))); });
}

void CellEditor::inputMethodEvent(QInputMethodEvent* event) {
    const QString typed = event->commitString();
    QString taken;
    for (const char32_t c : typed.toUcs4()) {
        if (center::AcceptsCharacter(column_, c)) taken += QString::fromUcs4(&c, 1);
    }
    if (taken == typed) return QLineEdit::inputMethodEvent(event);
    QInputMethodEvent rest(event->preeditString(), event->attributes());
    rest.setCommitString(taken, event->replacementStart(), event->replacementLength());
    QLineEdit::inputMethodEvent(&rest);
    emit textRejected(ToQt(center::VerdictText(center::TextVerdict::BadCharacter, column_)));
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
