if(SENSORCONTROL_SANITIZE)
  add_compile_options(-fsanitize=${SENSORCONTROL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${SENSORCONTROL_SANITIZE})
endif()
