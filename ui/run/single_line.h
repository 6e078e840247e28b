#pragma once

// A box of one line takes texts of one line: the line end that other programs put behind what they copy is
// dropped, every other control character refused, whichever way the text comes in. Owned by the box.
// User-interface thread only.

#include <QLineEdit>
#include <QRegularExpression>
#include <QValidator>

namespace vicenter::ui {

class SingleLine : public QValidator {
    Q_OBJECT

  public:
    // Becomes the field's validator. With a pattern the whole text has to match it.
    explicit SingleLine(QLineEdit& field, const QRegularExpression& pattern = {});

    State validate(QString& text, int& position) const override;

  protected:
    // Of a text without line ends and control characters.
    virtual State Judge(const QString& text) const;
    virtual void ControlCharacterRefused() const {}

  private:
    QRegularExpression pattern_;
};

}  // namespace vicenter::ui
