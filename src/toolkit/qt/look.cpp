#include "toolkit/qt/look.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFont>
#include <QPalette>
#include <QProxyStyle>

#include "toolkit/qt/conversion.h"

namespace toolkit::qt {

namespace {

class Look : public QProxyStyle {
  public:
    explicit Look(QObject& owner) : QProxyStyle(QStringLiteral("Fusion")) { setParent(&owner); }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        switch (hint) {
            case SH_LineEdit_PasswordCharacter:
                return '*';
            case SH_DialogButtonLayout:
                return QDialogButtonBox::WinLayout;
            case SH_LineEdit_PasswordMaskDelay:
            case SH_ComboBox_Popup:  // a list below the box, not a menu over it
            case SH_DialogButtonBox_ButtonsHaveIcons:
            case SH_ItemView_ActivateItemOnSingleClick:
                return 0;
            case SH_UnderlineShortcut:
                return 1;
            default:
                return QProxyStyle::styleHint(hint, option, widget, data);
        }
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override {
        switch (metric) {
            case PM_IndicatorWidth:
            case PM_IndicatorHeight:
                return 13;  // a check box is 17 pixels high
            case PM_CheckBoxLabelSpacing:
                return 5;
            case PM_ButtonMargin:
                return 2;
            default:
                return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }
};

QPalette light_grey() {
    const QColor grey(0xe6, 0xe4, 0xe0);
    const QColor lighter(0xf1, 0xf0, 0xed);  // what the style makes of the grey for the tab in front
    QPalette palette(grey, lighter);
    palette.setColor(QPalette::Dark, QColor(0xa0, 0x9e, 0x9a));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x5d, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xe1));
    palette.setColor(QPalette::ToolTipText, Qt::black);
    return palette;
}

}  // namespace

void prepare_look() {
    QApplication::setDesktopSettingsAware(false);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
}

void apply_look(QApplication& app) {
    app.setStyle(new Look(app));
    app.setPalette(light_grey());
    QFont font;
    // Letters as wide as those that the layouts were made for.
    font.setFamilies({"Liberation Sans", "Arimo", "Arial", "Nimbus Sans", "Sans Serif"});
    font.setPixelSize(font_pixels(8));
    app.setFont(font);
}

}  // namespace toolkit::qt
