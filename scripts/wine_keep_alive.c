/* Holds a Wine session open while tests run: wine_keep_alive READY_FILE SECONDS
 *
 * Wine's services stop when its last program ends, and starting them again costs seconds per test.
 * The ready file appears when everything that a test would otherwise start is up. The program ends
 * by itself after the given time, should nobody end it before. */
#include <windows.h>
#include <stdlib.h>

int main(int argc, char** argv) {
  if (argc != 3) return 2;

  /* The desktop: a message queue makes Wine start its explorer from here and not from a test. */
  MSG message;
  GetDesktopWindow();
  PeekMessageA(&message, NULL, 0, 0, PM_NOREMOVE);

  /* The services. */
  SC_HANDLE services = OpenSCManagerA(NULL, NULL, SC_MANAGER_CONNECT);
  if (services != NULL) CloseServiceHandle(services);

  HANDLE ready = CreateFileA(argv[1], GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
  if (ready == INVALID_HANDLE_VALUE) return 1;
  CloseHandle(ready);

  Sleep(1000UL * strtoul(argv[2], NULL, 10));
  return 0;
}
