#include "toolkit/qt/file_dialog.h"

#include <QComboBox>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <utility>

#include "base/text.h"
#include "toolkit/file_filter.h"
#include "toolkit/qt/boxes.h"
#include "toolkit/qt/conversion.h"
#include "toolkit/qt/folder_list.h"

namespace toolkit::qt {

namespace {

/// What the source answers; nothing where it has an error: the list is empty then.
template <class Ask>
auto or_empty(Ask ask) {
    try {
        return ask();
    } catch (const RuntimeError&) {
        return decltype(ask())();
    }
}

class FileWindow : public QDialog {
  public:
    FileWindow(const FileDialog& dialog, FolderSource& source, Language language, QWidget* parent);

    /// False where there is no such folder.
    bool open_folder(const std::string& path);
    const std::string& folder() const { return folder_; }
    const std::string& chosen() const { return chosen_; }

  private:
    void connect_lists();
    QString said(Word of) const { return shown(word(of, language_)); }
    void choose_drive();
    void lay_out();
    void show_drive();
    void show_files();
    void accept() override;

    const FileDialog::Action action_;
    const Language language_;
    FolderSource& source_;
    const std::vector<Filter> filters_;
    std::string pattern_ = "*.*";
    std::string folder_;
    std::vector<std::string> files_;
    std::string chosen_;

    AnsiLine* name_ = new AnsiLine(this);
    LineList* file_list_ = new LineList(this);
    QComboBox* filter_box_ = new QComboBox(this);
    FolderList* folder_list_ = new FolderList(this);
    QComboBox* drive_box_ = new QComboBox(this);
};

FileWindow::FileWindow(const FileDialog& dialog, FolderSource& source, Language language, QWidget* parent)
    : QDialog(parent),
      action_(dialog.action),
      language_(language),
      source_(source),
      filters_(parse_filters(dialog.filter)) {
    const Word usual_title = action_ == FileDialog::Action::save ? Word::save_as : Word::open;
    setWindowTitle(dialog.title.empty() ? said(usual_title) : shown(dialog.title));
    if (!filters_.empty()) pattern_ = filters_.front().pattern;
    for (const Filter& filter : filters_)
        filter_box_->addItem(shown(filter.description));
    for (const char letter : or_empty([&] { return source_.drives(); }))
        drive_box_->addItem(QString(QLatin1Char(letter)) + ':');
    connect_lists();
    lay_out();
    show_drive();
    name_->setFocus();
}

void FileWindow::connect_lists() {
    file_list_->lines().count = [this] { return static_cast<int>(files_.size()); };
    file_list_->lines().line = [this](int row) { return Line{.text = shown(files_[row])}; };
    file_list_->on_click = file_list_->on_move = [this](int row) { name_->setText(shown(files_[row])); };
    file_list_->on_open = [this](int row) {
        name_->setText(shown(files_[row]));
        accept();
    };
    folder_list_->on_ancestor = [this](int index) { open_folder(folders_on_the_way(folder_)[index]); };
    folder_list_->on_sub_folder = [this](int index) {
        open_folder(full_path(folder_, folder_list_->sub_folder(index)));
    };
    connect(filter_box_, &QComboBox::activated, this, [this](int index) {
        pattern_ = filters_[index].pattern;
        show_files();
    });
    connect(drive_box_, &QComboBox::activated, this, [this] { choose_drive(); });
}

void FileWindow::choose_drive() {
    const std::string drive = *ansi(drive_box_->currentText());
    if (open_folder(drive + "\\")) return;
    show_drive();
    ask({.text = drive + word(Word::no_such_drive, language_),
         .title = Toolkit::product_title,
         .icon = Icon::exclamation},
        language_, this);
}

void FileWindow::lay_out() {
    const bool save = action_ == FileDialog::Action::save;
    auto* accept_button = new QPushButton(said(save ? Word::save_button : Word::open_button));
    auto* cancel_button = new QPushButton(said(Word::cancel));
    accept_button->setDefault(true);
    connect(accept_button, &QPushButton::clicked, this, [this] { accept(); });
    connect(cancel_button, &QPushButton::clicked, this, &QDialog::reject);

    auto* grid = new QGridLayout(this);
    QWidget* last = cancel_button;
    const auto add = [&](Word caption, QWidget* widget, int row, int column) {
        auto* label = new QLabel(said(caption));
        label->setBuddy(widget);
        grid->addWidget(label, row, column);
        grid->addWidget(widget, row + 1, column);
        setTabOrder(std::exchange(last, widget), widget);
    };
    grid->addWidget(accept_button, 1, 2);
    grid->addWidget(cancel_button, 3, 2, Qt::AlignTop);
    add(Word::file_name, name_, 0, 0);
    add(Word::files, file_list_, 2, 0);
    add(Word::files_of_type, filter_box_, 4, 0);
    add(Word::folders, folder_list_, 2, 1);
    add(Word::drive, drive_box_, 4, 1);
    setTabOrder(drive_box_, accept_button);
    setTabOrder(accept_button, cancel_button);
    resize(pixels(8400), pixels(5100));
}

bool FileWindow::open_folder(const std::string& path) {
    const std::string found = or_empty([&] { return source_.folder(path); });
    if (found.empty()) return false;
    folder_ = found;
    folder_list_->show_folder(folders_on_the_way(folder_),
                              or_empty([&] { return source_.folders(folder_); }));
    show_drive();
    show_files();
    return true;
}

/// The drive of the folder on show: also after a choice of one that did not answer.
void FileWindow::show_drive() {
    drive_box_->setCurrentIndex(drive_box_->findText(shown(folder_.substr(0, 2)), Qt::MatchFixedString));
}

void FileWindow::show_files() {
    files_ = or_empty([&] { return source_.files(folder_); });
    std::erase_if(files_, [this](const std::string& name) { return !matches(name, pattern_); });
    file_list_->lines().refresh();
    file_list_->select(-1);
}

void FileWindow::accept() {
    const std::string line = name_->ansi_text();
    const std::string typed(text::trim_blanks(line));
    if (typed.empty()) return;
    if (typed.find_first_of("*?") != std::string::npos) {
        pattern_ = typed;
        return show_files();
    }
    chosen_ = full_path(folder_, typed);
    if (open_folder(chosen_)) return name_->clear();
    QDialog::accept();
}

}  // namespace

std::string ask_file(const FileDialog& dialog, FolderSource& source, std::string& last_folder,
                     Language language, QWidget* parent) {
    FileWindow window(dialog, source, language, parent);
    std::vector<std::string> starts{dialog.start_folder, last_folder, "C:\\"};
    for (const char drive : or_empty([&] { return source.drives(); }))
        starts.push_back({drive, ':', '\\'});  // any that is there: a drive can be empty
    for (const std::string& start : starts) {
        if (!start.empty() && window.open_folder(start)) break;
    }
    if (window.exec() != QDialog::Accepted) return {};
    last_folder = window.folder();
    return window.chosen();
}

}  // namespace toolkit::qt
