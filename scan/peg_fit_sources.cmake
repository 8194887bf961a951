# Sources of the peg fit: candidates, decision, optical registration.
target_sources(scan PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/peg_candidates.cpp
  ${CMAKE_CURRENT_LIST_DIR}/peg_decision.cpp
  ${CMAKE_CURRENT_LIST_DIR}/locate_pegs.cpp
  ${CMAKE_CURRENT_LIST_DIR}/optical_registration.cpp
)
