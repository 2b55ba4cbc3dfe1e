# Every dependency comes from a Debian package; a missing one names the package to install.
macro(qv_require found what package)
  if(NOT ${found})
    message(FATAL_ERROR "qvi18n: ${what} not found. On Debian 12: apt-get install ${package} "
                        "(or run scripts/install-deps.sh)")
  endif()
endmacro()

find_package(ICU 72 COMPONENTS uc i18n data)
qv_require(ICU_FOUND "ICU (uc, i18n, data)" "libicu-dev")

find_package(EXPAT)
qv_require(EXPAT_FOUND "Expat" "libexpat1-dev")

find_package(Boost 1.74 CONFIG COMPONENTS filesystem system thread date_time)
qv_require(Boost_FOUND "Boost 1.74 (filesystem, system, thread, date_time)"
           "libboost-dev libboost-filesystem-dev libboost-system-dev libboost-thread-dev libboost-date-time-dev")

find_package(Threads REQUIRED)

if(QVI18N_BUILD_TESTS)
  find_package(GTest CONFIG)
  qv_require(GTest_FOUND "GoogleTest" "libgtest-dev")
  include(GoogleTest)
endif()
if(QVI18N_BUILD_BENCHMARKS)
  find_package(benchmark CONFIG)
  qv_require(benchmark_FOUND "Google Benchmark" "libbenchmark-dev")
endif()

find_program(QVI18N_CCACHE ccache)
if(QVI18N_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${QVI18N_CCACHE})
endif()
