#pragma once

#include <gmock/gmock.h>

#include "base/product.h"
#include "base/text.h"
#include "startup/getpass.h"
#include "startup/program.h"
#include "startup/setpass.h"
#include "toolkit/script/script_toolkit.h"
#include "ui/forms.h"
#include "ui/main_form.h"

namespace britlock {

using namespace machine;
using namespace testing;
using namespace text::literals;
using toolkit::Answer;

/// A person in front of the program, on whatever machine.
struct Person {
    explicit Person(Language its_language = english) : language(its_language) {}
    ~Person() { EXPECT_EQ(screen.left_over(), 0u) << "a question that never came"; }

    /// The next act must bring a box of this title; it is answered so.
    Person& expecting(std::string title, Answer answer = toolkit::Answer::ok) {
        screen.expect_box(std::move(title), answer);
        return *this;
    }
    /// In the file dialog of the next act; an empty path cancels it.
    Person& choosing_file(std::string path) {
        screen.expect_file(std::move(path));
        return *this;
    }

    /// Starts the process; a running one is forgotten, as by a kill.
    bool start(const Machine& machine) {
        screen.ended = false;
        program = std::make_unique<Program>(machine, screen, language);
        add_forms(*program);
        return screen.act([&] { program->start(); });
    }

    bool give_password(const std::string& password) {
        type(form<getpass>().txt_pw, password);
        return click(form<getpass>().cmd_ok);
    }
    bool set_password(const std::string& password) {
        for (auto* box : {&form<setpass>().txt_newpw, &form<setpass>().txt_wdh})
            type(*box, password);
        return click(form<setpass>().cmd_ok);
    }

    /// An open form.
    template <class Form>
    Form& form() {
        return *program->loaded<Form>();
    }
    MainForm& window() { return form<MainForm>(); }

    /// Chooses a user in the list.
    bool choose(std::string_view user) {
        auto& combo = window().Combo_user;
        const auto at = std::find(combo.items().begin(), combo.items().end(), user) - combo.items().begin();
        EXPECT_LT(at, std::ssize(combo.items())) << user;
        return screen.act([&] { combo.choose(static_cast<int>(at)); });
    }

    /// Turns to the page of a control and acts on it.
    template <class Act>
    bool act_on(toolkit::Control& control, const Act& act) {
        return screen.act([&] {
            turn_to(control);
            act();
        });
    }
    template <class Clickable>
    bool click(Clickable& control) {
        return act_on(control, [&] {
            EXPECT_TRUE(control.usable()) << control.name();
            control.click();
        });
    }
    bool click(toolkit::MenuItem& item) {
        return screen.act([&] { item.click(); });
    }
    /// A line of a list, from 0.
    template <class List>
    bool click(List& list, int line) {
        return act_on(list, [&] { list.click_item(line); });
    }
    /// Marks or unmarks an applet, by its row from 1.
    void click_applet(size_t row) {
        act_on(window().lv1, [&] { window().lv1.click_row(row - 1); });
    }
    void type(toolkit::TextBox& box, std::string_view text) {
        act_on(box, [&] { box.type(text); });
    }
    bool apply() { return click(window().cmd_set); }
    /// The text of the last box.
    const std::string& told() { return screen.boxes.back().text; }

    void turn_to(const toolkit::Control& control) {
        for (const toolkit::Control* c = &control; c; c = c->parent()) {
            if (auto* tab = dynamic_cast<toolkit::TabContainer*>(c->parent())) tab->click_tab(c->page());
        }
    }
    /// What is ticked on all pages: rows of the catalogue, drives and applets, by their names.
    std::string ticked() {
        std::string names;
        const RestrictionSet set = window().marks();
        for (const Restriction& row : Get_CR()) {
            if (row.page != 0 && set.ticked(row.box)) names += " c" + std::to_string(row.box);
        }
        for (int k = 0; k < drive_count; ++k)
            if (set.drives[k] == 1) names += std::string(" ") + static_cast<char>('A' + k) + ":";
        for (int i = 0; i < applet_count; ++i)
            if (set.hidden_applets[i]) names += std::string(" ") + applets[i].file;
        return names;
    }

    Language language;
    toolkit::ScriptToolkit screen;
    std::unique_ptr<Program> program;
};

}  // namespace britlock

using namespace britlock;
