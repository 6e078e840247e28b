#pragma once

// Chinese texts of the widgets that Qt itself words: standard buttons, context menus of text fields, file
// dialogs.
//
// Kept as a table here, since the desktop need not have Qt's own translations installed. Immutable after
// creation.

#include <QTranslator>

namespace vicenter::ui {

class ChineseTexts : public QTranslator {
    Q_OBJECT

  public:
    explicit ChineseTexts(QObject* parent = nullptr);

    bool isEmpty() const override { return false; }
    // A null text for whatever the table does not hold, which leaves Qt's own.
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override;
};

}  // namespace vicenter::ui
