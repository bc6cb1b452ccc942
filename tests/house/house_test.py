#!/usr/bin/env python3
"""Tests of the checks of the house: each breach is found where it stands, and what is allowed passes."""
import os
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import house


class House(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = folder.name

    def file(self, path, text):
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def breaches(self, check):
        return list(house.CHECKS[check](self.root))

    def includes_of(self, path, *names):
        self.file(path, "".join(f"#include {name}\n" for name in names))
        return self.breaches("includes")

    def test_a_room_includes_its_own_files_and_those_below(self):
        self.assertEqual([], self.includes_of("src/client/A.cpp", '"client/B.h"', '"messages/C.h"', "<vector>",
                                              "<kqappsession/APClient.h>", "<kqappsession/KQAppSessionInfo.h>"))

    def test_an_include_upwards_is_found_with_its_line(self):
        self.assertEqual(["src/base/A.cpp:2: base may not use platform (platform/Clock.h)"],
                         self.includes_of("src/base/A.cpp", "<string>", '"platform/Clock.h"'))

    def test_client_and_server_do_not_know_each_other(self):
        self.assertEqual(1, len(self.includes_of("src/client/A.cpp", "<kqappsession/KQAppSessServer.h>")))

    def test_the_client_uses_the_session_record_but_nothing_of_the_server(self):
        self.assertEqual(['src/client/A.cpp:2: client may not use server (server/Announcement.h)'],
                         self.includes_of("src/client/A.cpp", '"session/A.h"', '"server/Announcement.h"'))

    def test_a_library_does_not_know_its_siblings(self):
        self.assertEqual(1, len(self.includes_of("src/libs/webdata/A.cpp", "<kqappsession/Timer.h>")))

    def test_a_public_header_belongs_to_the_room_that_owns_it(self):
        self.assertEqual(1, len(self.includes_of("include/kqappsession/Error.h", "<kqappsession/Platform.h>")))

    def test_a_public_header_uses_the_standard_library_only(self):
        self.assertEqual(2, len(self.includes_of("include/kqappsession/APClient.h", "<pugixml.hpp>", "<unistd.h>")))

    def test_only_the_header_for_hosts_with_their_own_loop_needs_asio(self):
        self.assertEqual([], self.includes_of("include/kqappsession/AsioEventLoop.h", "<asio/io_context.hpp>"))
        self.assertEqual(1, len(self.includes_of("include/kqappsession/EventLoop.h", "<asio/io_context.hpp>")))

    def test_the_operating_system_is_asked_in_ports_and_programs_only(self):
        self.assertEqual([], self.includes_of("src/platform/posix/A.cpp", "<sys/stat.h>"))
        self.assertEqual([], self.includes_of("tools/A.cpp", "<termios.h>"))
        self.assertEqual(["src/util/A.cpp:1: util may not ask the operating system, so not <sys/stat.h>"],
                         self.includes_of("src/util/A.cpp", "<sys/stat.h>"))

    def test_the_core_uses_no_other_peoples_code(self):
        self.assertEqual([], self.includes_of("src/libs/xmltext/A.cpp", "<pugixml.hpp>"))
        self.assertEqual(1, len(self.includes_of("src/server/A.cpp", "<fmt/format.h>")))

    def test_programs_know_client_and_server_by_public_headers_only(self):
        self.assertEqual([], self.includes_of("tools/A.cpp", "<kqappsession/KQAppSessClient.h>"))
        self.assertEqual(1, len(self.includes_of("tools/A.cpp", '"client/ClientState.h"')))

    def test_dialogs_know_forms_but_no_renderer_and_no_port(self):
        self.assertEqual([], self.includes_of("src/dialogs/A.cpp", '"forms/DialogHost.h"', '"platform/Shortcuts.h"'))
        self.assertEqual(2, len(self.includes_of("src/dialogs/A.cpp", '"forms/qt/A.h"', '"platform/posix/B.h"')))

    def test_of_the_messages_only_their_boxes_know_the_host_of_dialogs(self):
        self.assertEqual([], self.includes_of("src/messages/boxes/MessageBoxes.h", '"forms/DialogHost.h"'))
        self.assertEqual(["src/messages/Texts.h:1: messages may not use forms (forms/DialogHost.h)"],
                         self.includes_of("src/messages/Texts.h", '"forms/DialogHost.h"'))

    def test_renderers_do_not_know_each_other_nor_a_dialog(self):
        self.assertEqual(2, len(self.includes_of("src/forms/qt/A.cpp", '"forms/tty/B.h"', '"dialogs/frmLogin.h"')))

    def test_the_folders_of_the_login_server_are_rooms(self):
        self.assertEqual([], self.includes_of("zeb/requests/A.cpp", '"zeb/store/B.h"', '"tools/program/C.h"'))
        self.assertEqual(1, len(self.includes_of("zeb/store/A.cpp", '"zeb/requests/B.h"')))

    def test_ports_do_not_know_each_other(self):
        self.assertEqual(1, len(self.includes_of("src/platform/posix/A.cpp", '"platform/win32/B.h"')))

    def test_a_file_in_no_room_is_found(self):
        self.assertEqual(1, len(self.includes_of("src/misc/A.cpp", "<string>")))

    def test_an_unknown_public_header_is_found(self):
        self.assertEqual(1, len(self.includes_of("tools/A.cpp", "<kqappsession/Nothing.h>")))

    def test_a_header_without_purpose_or_guard_is_found(self):
        self.file("src/base/A.h", "namespace kq {}\n")
        self.assertEqual(2, len(self.breaches("headers")))

    def test_a_header_with_purpose_and_guard_passes(self):
        self.file("src/base/A.h", "// What A is.\n#pragma once\n")
        self.assertEqual([], self.breaches("headers"))

    def test_a_switch_on_windows_is_found_outside_the_ports(self):
        self.file("src/client/A.cpp", "int a;\n#if defined(_WIN32)\n#endif\n")
        self.file("src/platform/win32/A.cpp", "#ifdef _WIN32\n#endif\n")
        self.assertEqual(["src/client/A.cpp:2: client is the same on every platform: no switch on _WIN32"],
                         self.breaches("platforms"))

    def test_eight_hundred_lines_pass_and_one_more_does_not(self):
        self.file("src/client/A.cpp", "\n" * 800)
        self.assertEqual([], self.breaches("sizes"))
        self.file("src/client/A.cpp", "\n" * 801)
        self.assertEqual(1, len(self.breaches("sizes")))

    def test_a_library_that_names_a_message_or_a_field_of_one_is_found(self):
        self.file("src/messages/ASMessageList.h", 'MESSAGE(Bus, ASInfo, "says", \\\n'
                                                  '    FIELD(Element<kq::Info>, Info, "what") FIELD(Text, State, "how"))\n')
        self.file("src/libs/xmlbus/A.cpp", 'Find("Info/State");\n// "ASInfo"\n"The State" + State + "Infos";\n')
        self.file("src/server/A.cpp", 'Find("Info/State");\n')
        self.assertEqual(["src/libs/xmlbus/A.cpp:1: libs/xmlbus names Info, which is the catalogue's",
                          "src/libs/xmlbus/A.cpp:1: libs/xmlbus names State, which is the catalogue's",
                          "src/libs/xmlbus/A.cpp:2: libs/xmlbus names ASInfo, which is the catalogue's"],
                         self.breaches("catalogue"))

    def test_a_library_may_call_its_own_what_the_catalogue_has_a_field_for(self):
        self.file("src/messages/ASMessageList.h", 'FIELD(XML, Profiles, "the profiles")\n')
        self.file("src/libs/webdata/A.cpp", 'Open("Profiles");\n')
        self.file("include/kqappsession/WebData.h", '// "Profiles"\n')
        self.assertEqual([], self.breaches("catalogue"))
        self.file("include/kqappsession/Timer.h", '// "Profiles"\n')
        self.assertEqual(1, len(self.breaches("catalogue")))

    def test_a_link_to_nothing_is_found(self):
        self.file("docs/tour.md", "see [a](wire.md#top), [b](../README.md) and [c](https://example.com/x)\n")
        self.file("docs/wire.md", "\n")
        self.assertEqual(["docs/tour.md:1: there is no ../README.md"], self.breaches("links"))

    def test_a_file_or_test_that_a_document_names_and_that_is_not_there_is_found(self):
        self.file("tests/a/ATest.cpp", "TEST_F(Login, Succeeds) {}\n")
        self.file("docs/adding.md", "`tests/a/ATest.cpp`, `Login.Succeeds`, `House.names` and `tests/a/<Name>.cpp`\n"
                               "`tests/a/BTest.cpp` `Login.Fails`\n")
        self.assertEqual(["docs/adding.md:2: there is no tests/a/BTest.cpp",
                          "docs/adding.md:2: there is no test Login.Fails"],
                         self.breaches("names"))

    def test_a_message_or_field_that_the_client_or_the_server_names_by_a_text_is_found(self):
        self.file("src/messages/ASMessageList.h", '    MESSAGE(Client, ASAnswer, "an answer",  \\\n')
        self.file("src/client/A.cpp", '// "ASAnswer"\nauto a = b.Field("Port");\nauto c = "ASAnswer";\n')
        self.file("src/server/A.cpp", 'b.SetField(ASAnswer::kPort, "Port");\nb.SetField("Port", "1");\n')
        self.assertEqual(['src/client/A.cpp:2: the field "Port" is read or written by a text',
                          'src/client/A.cpp:3: "ASAnswer" is a message of the catalogue, write ASAnswer::kType',
                          'src/server/A.cpp:2: the field "Port" is read or written by a text'],
                         self.breaches("messages"))

    def test_the_newest_version_of_the_changes_is_the_one_that_is_built(self):
        self.file("CMakeLists.txt", "project(A VERSION 1.2.0 LANGUAGES CXX)\n")
        self.file("CHANGELOG.md", "# Changes\n\n## 1.2.0\n\n## 1.1.0\n")
        self.assertEqual([], self.breaches("version"))
        self.file("CHANGELOG.md", "# Changes\n\n## 1.1.0\n")
        self.assertEqual(["CHANGELOG.md:3: the newest version is 1.1.0, CMakeLists.txt builds 1.2.0"],
                         self.breaches("version"))

    def test_a_full_stop_at_the_end_of_an_errors_description_is_found(self):
        self.file("src/base/A.cpp", 'Raise(Kind::A, "It (a) is \\"b\\".");\n'
                                    'throw Error(1, "lib",\n      "No " + Name(x) + " here.", Cause::B);\n')
        self.file("zeb/A.cpp", 'Refuse("There is no database.");\n')
        self.assertEqual([f"{place}: the description of an error has no full stop"
                          for place in ("src/base/A.cpp:1", "src/base/A.cpp:2", "zeb/A.cpp:1")],
                         self.breaches("errors"))

    def test_descriptions_without_a_full_stop_and_other_sentences_pass(self):
        self.file("src/base/A.cpp", 'Raise(Kind::A, "It ends. Or not", F(".", b));\nlog.warn("Ignored.");\n')
        self.assertEqual([], self.breaches("errors"))


if __name__ == "__main__":
    unittest.main()
