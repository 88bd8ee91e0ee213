if(SENSORCONTROL_SANITIZE)
  add_compile_options(-fsanitize=${SENSORCONTROL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${SENSORCONTROL_SANITIZE})
endif()
if(SENSORCONTROL_COVERAGE)
  # Counters that threads share are garbage unless they are updated atomically.
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()
