# The suites of the engine, all on one fake machine.

brisora_library(engine_test_support
    SOURCES
        enginemachine.cpp
    USES
        test_support brisora_fancontrol brisora_resources Qt5::Test)

foreach(suite load update control sensor gpus sleep stop failure reload)
    brisora_test(test_engine_${suite} LABEL "unit;threads"
        SOURCES test_engine_${suite}.cpp
        USES engine_test_support)
endforeach()
