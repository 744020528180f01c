#include "toolkit/qt/printer.h"

#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFontMetricsF>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>

#include "base/runtime_error.h"
#include "toolkit/page_printer.h"
#include "toolkit/qt/conversion.h"

namespace toolkit::qt {

namespace {

constexpr double twips_per_inch = 1440;
/// The corner that lengths are measured from. Every printer reaches it.
constexpr double corner = 360;

class QtPrinter : public PagePrinter {
  public:
    explicit QtPrinter(const PrinterChoice& choice);
    ~QtPrinter() override;

    void set_font(const Font& font) override;
    void end_document() override;

  private:
    Metrics metrics() override;
    double draw(double x, double y, std::string_view ansi) override;
    void turn_page() override;
    double pixels_of(double twips) const { return twips * printer_.resolution() / twips_per_inch; }
    double twips_of(double pixels) const { return pixels * twips_per_inch / printer_.resolution(); }
    QFontMetricsF font_metrics() { return {painter_.font(), &printer_}; }

    QPrinter printer_{QPrinter::HighResolution};
    QPainter painter_;
};

QtPrinter::QtPrinter(const PrinterChoice& choice) {
    if (choice.pdf_file.isEmpty()) {
        // Of a queue that has gone Qt says nothing, and the document is lost.
        if (QPrinterInfo::printerInfo(choice.printer).isNull()) throw RuntimeError(482);
        printer_.setPrinterName(choice.printer);
    } else {
        printer_.setOutputFormat(QPrinter::PdfFormat);
        printer_.setOutputFileName(choice.pdf_file);
    }
    printer_.setDocName(QStringLiteral("Brightlock Suite"));
    printer_.setPageSize(QPageSize(QPageSize::A4));
    printer_.setFullPage(true);
    if (!printer_.isValid() || !painter_.begin(&printer_)) throw RuntimeError(482);
}

QtPrinter::~QtPrinter() {
    if (!painter_.isActive()) return;
    printer_.abort();
    if (!printer_.outputFileName().isEmpty()) (void)QFile::remove(printer_.outputFileName());
}

void QtPrinter::set_font(const Font& font) {
    QFont wanted(QString::fromStdString(font.name));
    wanted.setPointSize(font.points);
    wanted.setBold(font.bold);
    painter_.setFont(QFont(wanted, &printer_));
}

PagePrinter::Metrics QtPrinter::metrics() {
    return {twips_of(font_metrics().height()), twips_of(font_metrics().averageCharWidth())};
}

double QtPrinter::draw(double x, double y, std::string_view ansi) {
    const QString text = shown(ansi);
    const QPointF baseline(pixels_of(corner + x), pixels_of(corner + y) + font_metrics().ascent());
    painter_.drawText(baseline, text);
    return twips_of(font_metrics().horizontalAdvance(text));
}

void QtPrinter::turn_page() {
    if (!printer_.newPage()) throw RuntimeError(482);
}

void QtPrinter::end_document() {
    if (!painter_.end() || printer_.printerState() == QPrinter::Error) throw RuntimeError(482);
}

/// Printers of this system, and a file.
class SetupWindow : public QDialog {
  public:
    SetupWindow(const PrinterChoice& choice, Language language, QWidget* parent);
    PrinterChoice chosen() const;

  private:
    QString said(Word of) const { return shown(word(of, language_)); }
    bool means_file() const { return printers_->currentIndex() == printers_->count() - 1; }
    void show_use();
    void browse();

    const Language language_;
    QComboBox* printers_ = new QComboBox(this);
    QLineEdit* file_ = new QLineEdit(this);
    QPushButton* browse_ = new QPushButton(said(Word::browse), this);
    QDialogButtonBox* buttons_ = new QDialogButtonBox(this);
    QPushButton* ok_ = buttons_->addButton(said(Word::ok), QDialogButtonBox::AcceptRole);
};

SetupWindow::SetupWindow(const PrinterChoice& choice, Language language, QWidget* parent)
    : QDialog(parent), language_(language) {
    setWindowTitle(said(Word::print_setup));
    printers_->addItems(QPrinterInfo::availablePrinterNames());
    printers_->addItem(said(Word::pdf_file));
    const int known = printers_->findText(choice.printer);
    printers_->setCurrentIndex(choice.pdf_file.isEmpty() && known >= 0 ? known : printers_->count() - 1);
    file_->setText(choice.pdf_file);
    buttons_->addButton(said(Word::cancel), QDialogButtonBox::RejectRole);
    connect(printers_, &QComboBox::currentIndexChanged, this, [this] { show_use(); });
    connect(file_, &QLineEdit::textChanged, this, [this] { show_use(); });
    connect(browse_, &QPushButton::clicked, this, [this] { browse(); });
    connect(buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* file_row = new QHBoxLayout;
    file_row->addWidget(file_, 1);
    file_row->addWidget(browse_);
    auto* rows = new QFormLayout(this);
    rows->addRow(said(Word::printer), printers_);
    rows->addRow(said(Word::file), file_row);
    qobject_cast<QLabel*>(rows->labelForField(file_row))->setBuddy(file_);
    rows->addRow(buttons_);
    setMinimumWidth(pixels(6600));
    show_use();
    if (means_file()) file_->setFocus();
}

void SetupWindow::show_use() {
    file_->setEnabled(means_file());
    browse_->setEnabled(means_file());
    ok_->setEnabled(!means_file() || !file_->text().isEmpty());
}

void SetupWindow::browse() {
    const QString file = QFileDialog::getSaveFileName(this, said(Word::pdf_file), file_->text(),
                                                      QStringLiteral("PDF (*.pdf)"));
    if (!file.isEmpty()) file_->setText(file);
}

PrinterChoice SetupWindow::chosen() const {
    if (means_file()) return {.printer = {}, .pdf_file = file_->text()};
    return {.printer = printers_->currentText(), .pdf_file = {}};
}

}  // namespace

PrinterChoice PrinterChoice::usual() {
    const QString named = QPrinterInfo::defaultPrinterName();
    return {.printer = named.isEmpty() ? QPrinterInfo::availablePrinterNames().value(0) : named,
            .pdf_file = {}};
}

std::unique_ptr<Printer> open_printer(const PrinterChoice& choice) {
    return std::make_unique<QtPrinter>(choice);
}

void ask_printer(PrinterChoice& choice, Language language, QWidget* parent) {
    SetupWindow window(choice, language, parent);
    if (window.exec() == QDialog::Accepted) choice = window.chosen();
}

}  // namespace toolkit::qt
