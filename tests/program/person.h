#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "base/product.h"
#include "startup/getpass.h"
#include "startup/program.h"
#include "startup/setpass.h"
#include "toolkit/script/script_toolkit.h"
#include "ui/forms.h"
#include "ui/main_form.h"

namespace britlock {

/// A person in front of the program, on whatever machine.
struct Person {
    explicit Person(Language its_language = english) : language(its_language) {}
    ~Person() { EXPECT_EQ(screen.left_over(), 0u) << "a question that never came"; }

    /// The next act must bring a box of this title; it is answered so.
    Person& expecting(std::string title, toolkit::Answer answer = toolkit::Answer::ok) {
        screen.expect_box(std::move(title), answer);
        return *this;
    }
    /// In the file dialog of the next act; an empty path cancels it.
    Person& choosing_file(std::string path) {
        screen.expect_file(std::move(path));
        return *this;
    }

    /// Starts the process; a running one is forgotten, as by a kill.
    bool start(const machine::Machine& machine) {
        screen.ended = false;
        program = std::make_unique<Program>(machine, screen, language);
        add_forms(*program);
        return screen.act([&] { program->start(); });
    }

    bool give_password(const std::string& password) {
        return screen.act([&] {
            program->loaded<getpass>()->txt_pw.type(password);
            program->loaded<getpass>()->cmd_ok.click();
        });
    }

    bool set_password(const std::string& password) {
        return screen.act([&] {
            program->loaded<setpass>()->txt_newpw.type(password);
            program->loaded<setpass>()->txt_wdh.type(password);
            program->loaded<setpass>()->cmd_ok.click();
        });
    }

    MainForm& window() { return *program->loaded<MainForm>(); }

    /// Chooses a user in the list.
    bool choose(std::string_view user) {
        auto& combo = window().Combo_user;
        const auto at = std::find(combo.items().begin(), combo.items().end(), user) - combo.items().begin();
        EXPECT_LT(at, std::ssize(combo.items())) << user;
        return screen.act([&] { combo.choose(static_cast<int>(at)); });
    }

    /// Turns to the page of a control and clicks it.
    template <class Clickable>
    bool click(Clickable& control) {
        return screen.act([&] {
            turn_to(control);
            EXPECT_TRUE(control.usable()) << control.name();
            control.click();
        });
    }
    bool click(toolkit::MenuItem& item) {
        return screen.act([&] { item.click(); });
    }
    /// Marks or unmarks an applet, by its row from 1.
    void click_applet(size_t row) {
        screen.act([&] {
            turn_to(window().lv1);
            window().lv1.click_row(row - 1);
        });
    }
    bool apply() { return click(window().cmd_set); }
    /// The text of the last box.
    const std::string& told() { return screen.boxes.back().text; }

    void turn_to(const toolkit::Control& control) {
        for (const toolkit::Control* c = &control; c; c = c->parent()) {
            if (c->parent() == &window().tab) window().tab.click_tab(c->page());
        }
    }

    Language language;
    toolkit::ScriptToolkit screen;
    std::unique_ptr<Program> program;
};

}  // namespace britlock
