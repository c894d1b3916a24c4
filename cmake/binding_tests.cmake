# Tests of the bindings and of their examples, on this machine alone: the Python package over ctypes, with the
# interpreter of the system, and the C# source file where mcs and mono are installed.

set(binding_folder ${PROJECT_SOURCE_DIR}/tests/bindings)
set(vok_skipped 77)  # what a test answers that has nothing to run on

# WHY not the first python3 of the PATH: the system's has the system's pandas.
find_program(VOK_BINDING_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
if(NOT VOK_BINDING_PYTHON)
  set(VOK_BINDING_PYTHON ${VOK_PYTHON})
endif()
# What may have nothing to run on is a test of its own, so that it is counted when it is skipped.
set(python_test ${VOK_BINDING_PYTHON} ${binding_folder}/python_test.py
  --product $<TARGET_FILE:vok_table_rw_vc> --source ${PROJECT_SOURCE_DIR})
add_test(NAME bindings.python COMMAND ${python_test})
add_test(NAME bindings.python_pandas COMMAND ${python_test} Pandas)
add_test(NAME bindings.python_pip COMMAND ${python_test} Installation)
set(example_python ${VOK_BINDING_PYTHON} ${PROJECT_SOURCE_DIR}/examples/read_wells.py)
add_test(NAME example.read_wells_py
  COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/cmake/compare_output.py
    ${PROJECT_SOURCE_DIR}/examples/read_wells_py.expected
    ${example_python} ${PROJECT_SOURCE_DIR}/examples)
set_tests_properties(example.read_wells_py PROPERTIES ENVIRONMENT
  "PYTHONPATH=${PROJECT_SOURCE_DIR}/bindings/python;PYTHONDONTWRITEBYTECODE=1;VOK_TABLE_RW_LIBRARY=$<TARGET_FILE:vok_table_rw_vc>")

set(run_csharp ${VOK_PYTHON} ${binding_folder}/run_csharp.py --product $<TARGET_FILE:vok_table_rw_vc>
  --source ${PROJECT_SOURCE_DIR} --work ${PROJECT_BINARY_DIR}/csharp)
add_test(NAME bindings.csharp
  COMMAND ${run_csharp} ${binding_folder}/csharp_test.cs
    ${PROJECT_SOURCE_DIR}/examples {temporary} $<TARGET_FILE_DIR:vok_xls2csv>)
add_test(NAME example.read_wells_cs
  COMMAND ${VOK_PYTHON} ${PROJECT_SOURCE_DIR}/cmake/compare_output.py
    ${PROJECT_SOURCE_DIR}/examples/read_wells_cs.expected
    ${run_csharp} ${PROJECT_SOURCE_DIR}/examples/read_wells.cs ${PROJECT_SOURCE_DIR}/examples)
set_tests_properties(bindings.python_pandas bindings.python_pip bindings.csharp example.read_wells_cs
  PROPERTIES SKIP_RETURN_CODE ${vok_skipped})
