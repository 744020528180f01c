#include "toolkit/qt/look.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFont>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>

#include "toolkit/qt/conversion.h"

namespace toolkit::qt {

namespace {

constexpr int focus_frame = 2;  // around a list

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
            case SH_ComboBox_AllowWheelScrolling:  // scrolling over the window must not choose in passing
                return widget && widget->hasFocus();
            default:
                return QProxyStyle::styleHint(hint, option, widget, data);
        }
    }

    using QProxyStyle::polish;
    void polish(QWidget* widget) override {
        QProxyStyle::polish(widget);
        // The wheel would give a combo box the focus, and then turn it.
        if (qobject_cast<QComboBox*>(widget)) widget->setFocusPolicy(Qt::StrongFocus);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        if (element == CE_ShapedFrame && qobject_cast<const QAbstractItemView*>(widget))
            return draw_list_frame(*option, *painter);
        QProxyStyle::drawControl(element, option, painter, widget);
        if (element != CE_TabBarTabLabel || !(option->state & State_HasFocus)) return;
        painter->setPen(option->palette.color(QPalette::Highlight));
        painter->drawRect(option->rect.adjusted(4, 3, -5, -3));
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override {
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        // Marks of neighbouring lines must not touch.
        return type == CT_ItemViewItem ? size + QSize(0, 4) : size;
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
            case PM_DefaultFrameWidth:
                return focus_frame;
            default:
                return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

  private:
    /// Whole lines of the screen at every scale, and wider and in the colour of the focus where that is.
    static void draw_list_frame(const QStyleOption& option, QPainter& painter) {
        const bool focused = option.state & State_HasFocus;
        const int width = focused ? focus_frame : 1;
        const QRect inner = option.rect.adjusted(width, width, -width, -width);
        painter.fillRect(option.rect, option.palette.base());
        for (const QRect& edge : QRegion(option.rect) - QRegion(inner))
            painter.fillRect(edge, option.palette.color(focused ? QPalette::Highlight : QPalette::Dark));
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
