# Tests of scanctl db, scanctl queue and pix2vec's queue worker, run as
# separate processes against SQLite and a throwaway PostgreSQL server.
scan_add_test(workflow_scanctl_db_tests
  SOURCES ${CMAKE_CURRENT_LIST_DIR}/test_scanctl_db.cpp ${CMAKE_CURRENT_LIST_DIR}/test_scanctl_queue_processes.cpp
          ${CMAKE_CURRENT_LIST_DIR}/test_pix2vec_worker.cpp
          ${CMAKE_SOURCE_DIR}/tests/support/pg_test_server.cpp
  LIBS suite_db Qt6::Core)
target_compile_definitions(workflow_scanctl_db_tests PRIVATE SCANCTL_PATH="$<TARGET_FILE:scanctl>"
                           PIX2VEC_PATH="$<TARGET_FILE:pix2vec>")
add_dependencies(workflow_scanctl_db_tests scanctl pix2vec)
