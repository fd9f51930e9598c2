#pragma once

#include <memory>

#include <QTemporaryDir>
#include <QTest>

// The surroundings of one test program: settings, data, run-time and temporary
// folders of its own, so that tests neither meet each other nor touch the user's
// files. Make one before the application object.
class TestEnvironment {
public:
    TestEnvironment();
    TestEnvironment(const TestEnvironment&) = delete;
    TestEnvironment& operator=(const TestEnvironment&) = delete;
    ~TestEnvironment();

    // A folder that is removed at the end of the program.
    [[nodiscard]] QString path() const { return m_folder.path(); }

private:
    class Surroundings;

    QTemporaryDir m_folder;
    std::unique_ptr<Surroundings> m_surroundings;
};

// The main function of a test program with an application object of the given
// class (QCoreApplication, QApplication).
#define BRISORA_TEST_MAIN(TestClass, ApplicationClass)                                             \
    int main(int argc, char* argv[])                                                               \
    {                                                                                              \
        const TestEnvironment environment;                                                         \
        ApplicationClass application(argc, argv);                                                  \
        TestClass test;                                                                            \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
