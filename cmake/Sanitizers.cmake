if(SENSORCONTROL_SANITIZE)
  add_compile_options(-fsanitize=${SENSORCONTROL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${SENSORCONTROL_SANITIZE})
endif()
if(SENSORCONTROL_SANITIZE MATCHES "fuzzer")
  # An input has to take the same branches in every run, wherever things lie in memory: the cache of the vptr check is
  # found by address, and how deep the stack is depends on where it begins.
  add_compile_options(-fno-sanitize=vptr -fno-sanitize-coverage=stack-depth)
endif()
if(SENSORCONTROL_COVERAGE)
  # Counters that threads share are garbage unless they are updated atomically.
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
