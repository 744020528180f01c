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
#include "toolkit/qt/conversion.h"

namespace toolkit::qt {

namespace {

constexpr double twips_per_inch = 1440;
/// The corner that lengths are measured from. Every printer reaches it.
constexpr double corner = 360;
/// Lines end above this; a text with a place of its own may stand below.
constexpr double bottom = 15480;

class PagePrinter : public Printer {
  public:
    explicit PagePrinter(const PrinterChoice& choice);
    ~PagePrinter() override;

    void set_font(const Font& font) override;
    void set_left(int twips) override;
    void print(std::string_view ansi) override;
    void tab(int column) override;
    void end_line() override;
    void set_position(int x, int y) override;
    void new_page() override;
    void end_document() override;

  private:
    double pixels_of(double twips) const { return twips * printer_.resolution() / twips_per_inch; }
    double twips_of(double pixels) const { return pixels * twips_per_inch / printer_.resolution(); }
    QFontMetricsF metrics() { return {painter_.font(), &printer_}; }
    void make_room();

    QPrinter printer_{QPrinter::HighResolution};
    QPainter painter_;
    double left_ = 0;
    double x_ = 0, y_ = 0;  // twips; x_ from the beginning of the line
    bool placed_ = false;   // the next text stands where it was put, on whatever page this is
};

PagePrinter::PagePrinter(const PrinterChoice& choice) {
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

PagePrinter::~PagePrinter() {
    if (!painter_.isActive()) return;
    printer_.abort();
    if (!printer_.outputFileName().isEmpty()) (void)QFile::remove(printer_.outputFileName());
}

void PagePrinter::set_font(const Font& font) {
    QFont wanted(QString::fromStdString(font.name));
    wanted.setPointSize(font.points);
    wanted.setBold(font.bold);
    painter_.setFont(QFont(wanted, &printer_));
}

void PagePrinter::set_left(int twips) { left_ = -twips; }

void PagePrinter::make_room() {
    if (!placed_ && y_ + twips_of(metrics().height()) > bottom) new_page();
}

void PagePrinter::print(std::string_view ansi) {
    make_room();
    const QString text = shown(ansi);
    const QPointF baseline(pixels_of(corner + left_ + x_), pixels_of(corner + y_) + metrics().ascent());
    painter_.drawText(baseline, text);
    x_ += twips_of(metrics().horizontalAdvance(text));
}

void PagePrinter::tab(int column) {
    const double place = (column - 1) * twips_of(metrics().averageCharWidth());
    if (x_ > place) end_line();
    x_ = place;
}

void PagePrinter::end_line() {
    make_room();
    x_ = 0;
    y_ += twips_of(metrics().height());
    placed_ = false;
}

void PagePrinter::set_position(int x, int y) {
    x_ = x;
    y_ = y;
    placed_ = true;
}

void PagePrinter::new_page() {
    if (!printer_.newPage()) throw RuntimeError(482);
    x_ = y_ = 0;
}

void PagePrinter::end_document() {
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
    return std::make_unique<PagePrinter>(choice);
}

void ask_printer(PrinterChoice& choice, Language language, QWidget* parent) {
    SetupWindow window(choice, language, parent);
    if (window.exec() == QDialog::Accepted) choice = window.chosen();
}

}  // namespace toolkit::qt
