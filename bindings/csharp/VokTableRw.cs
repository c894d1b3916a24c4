// The vok_table_rw_vc library from C#: reads the tables that geologists have, exactly, and writes them.
//
//     using (Table table = Table.Read("wells.csv", new TableOptions { Encoding = Encodings.Cp1251 }))
//     {
//         foreach (string well in table.Column("WELL")) ...
//         string[] sand = table.Find("WELL", new Condition("ROCK", "sand"));
//     }
//
// One source file, so that a project takes it in by adding it, over the UTF-16 functions of the C interface,
// the same on Windows and on Linux, for .NET Framework 4.5, Mono, .NET Standard 2.0 and later. The library is
// found as every P/Invoke library is: vok_table_rw_vc.dll or libvok_table_rw_vc.so beside the program, or where
// the system's loader looks.
//
// Values are text, exactly as the source has them. Lines and rows count from 0.
// Errors: FileNotFoundException, TableException, and ArgumentException for what a caller did wrong.
// Threads: different tables are independent of each other; one table belongs to one thread at a time.
using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.InteropServices;

namespace Vok.TableRw
{
    /// <summary>A table could not be read or written. The message says what happened, and what to do.</summary>
    public class TableException : IOException
    {
        public TableException(string message) : base(message) { }
    }

    /// <summary>How to read a source.</summary>
    public enum FileType
    {
        /// <summary>Chosen by the extension, else by the file's first line.</summary>
        Auto = 0,
        Csv = 1,
        /// <summary>A workbook, through the converter program.</summary>
        Xls = 2,
        XlsOdbc = 3,
        Access = 4,
        Dbf = 5,
        Sqlite = 6,
        Micromine = 7,
        Dhdb = 8,
        Petrel = 9,
    }

    /// <summary>The type that a source declares for a field; delimited text declares none.</summary>
    public enum FieldType
    {
        Text = 0,
        Number = 1,
    }

    /// <summary>Numbers of the encodings that delimited text comes in most often; 0 to 18 are valid.</summary>
    public static class Encodings
    {
        public const int Utf8 = 0;
        public const int Cp1250 = 7;
        public const int Cp1251 = 8;
        public const int Cp1252 = 9;
        public const int Cp866 = 16;
        public const int System = 18;
    }

    /// <summary>What to read and how.</summary>
    public sealed class TableOptions
    {
        /// <summary>The table or sheet, where the source holds several.</summary>
        public string Table = "";
        public int Encoding = Encodings.Utf8;
        /// <summary>Between the values of delimited text; empty: every line is one value.</summary>
        public string Delimiter = ";";
        /// <summary>Around values that hold the delimiter; empty: none.</summary>
        public string Quote = "\"";
        /// <summary>Line of the field names; -1: there is none, and the fields are called field_0...</summary>
        public int HeaderPosition = 0;
        /// <summary>First line that may hold data; null: the line behind the header.</summary>
        public ulong? DataPosition = null;
        /// <summary>0: one record a line; 1: records run across columns.</summary>
        public int Direction = 0;
        public FileType FileType = FileType.Auto;
    }

    /// <summary>A field and the text that is wanted there.</summary>
    public struct Condition
    {
        public readonly string Field;
        public readonly string Value;

        public Condition(string field, string value)
        {
            Field = field;
            Value = value;
        }
    }

    /// <summary>A line that does not fit its table.</summary>
    public struct RejectedLine
    {
        /// <summary>Counts every line of the source from 0.</summary>
        public readonly ulong Number;
        /// <summary>The line as it stands there, decoded.</summary>
        public readonly string Text;

        public RejectedLine(ulong number, string text)
        {
            Number = number;
            Text = text;
        }
    }

    /// <summary>A source and the results of its last read.</summary>
    public sealed class Table : IDisposable
    {
        private readonly OptionsHandle options;
        private readonly TextListHandle list;
        private ReaderHandle reader;
        private bool isNew = true;

        /// <summary>Reads a table into memory.</summary>
        /// <exception cref="FileNotFoundException">There is no such file.</exception>
        /// <exception cref="TableException">It cannot be read.</exception>
        public static Table Read(string path, TableOptions options = null)
        {
            Table table = Open(path, options);
            try
            {
                table.Read();
                return table;
            }
            catch
            {
                table.Dispose();
                throw;
            }
        }

        /// <summary>A table of which nothing is read yet: for its list of tables, its fields, a preview.</summary>
        public static Table Open(string path, TableOptions options = null)
        {
            return new Table(path, options ?? new TableOptions());
        }

        private Table(string path, TableOptions given)
        {
            Native.CheckText(path, "path");
            Native.CheckText(given.Delimiter, "Delimiter");
            Native.CheckText(given.Quote, "Quote");
            Native.CheckText(given.Table, "Table");
            if (given.Encoding < 0 || given.Encoding > 18)
                throw new ArgumentException("the encoding " + given.Encoding + " is not between 0 and 18");
            if (given.Direction != 0 && given.Direction != 1)
                throw new ArgumentException("the direction is " + given.Direction + "; it is 0 or 1");
            Path = path;
            Native.FindConverter();
            options = Native.vo_table_reader_options_create_u16(path);
            if (options.IsInvalid) throw new OutOfMemoryException();
            ulong behindHeader = given.HeaderPosition < 0 ? 0 : (ulong)given.HeaderPosition + 1;
            Native.vo_table_reader_options_set_header_position(options, given.HeaderPosition);
            Native.vo_table_reader_options_set_data_position(options, given.DataPosition ?? behindHeader);
            Native.vo_table_reader_options_set_direction(options, given.Direction);
            Native.vo_table_reader_options_set_encoding(options, given.Encoding);
            bool done = Native.vo_table_reader_options_set_delimiter_u16(options, given.Delimiter)
                && Native.vo_table_reader_options_set_quote_u16(options, given.Quote)
                && Native.vo_table_reader_options_set_table_u16(options, given.Table);
            if (!done) throw new OutOfMemoryException();
            if (!Native.vo_table_reader_options_set_any_file_type(options, (int)given.FileType))
                throw new ArgumentException("there is no file type " + (int)given.FileType);
            reader = Native.vo_table_reader_open(options);
            list = Native.NewList();
        }

        public void Dispose()
        {
            reader.Dispose();
            list.Dispose();
            options.Dispose();
        }

        public string Path { get; private set; }

        // ---- reading ----

        /// <summary>The names of the tables (sheets) in the source.</summary>
        public string[] Tables()
        {
            string[] names = Texts(Native.vo_table_reader_table_list_u16(Opened(), list));
            CheckWhole();
            return names;
        }

        /// <summary>Chooses the table for the next read; the results of the last one stay.</summary>
        public void ChooseTable(string name)
        {
            Native.CheckText(name, "name");
            Opened();
            Check(Native.vo_table_reader_options_set_table_u16(options, name));
            isNew = false;
        }

        /// <summary>Reads the whole table into memory.</summary>
        public void Read()
        {
            CheckRead(Native.vo_table_reader_read(ReaderForARead()));
        }

        /// <summary>Reads names and types of the fields, no rows.</summary>
        public void ReadHeaders()
        {
            CheckRead(Native.vo_table_reader_read_only_headers(ReaderForARead()));
        }

        /// <summary>Reads with a limit of rows, where the format heeds one; delimited text does not.</summary>
        public void ReadPreview(int rows)
        {
            if (rows < 1) throw new ArgumentException("a preview of " + rows + " rows: at least one");
            CheckRead(Native.vo_table_reader_read_demo(ReaderForARead(), rows));
        }

        // ---- fields ----

        /// <summary>The names of the fields; a name may occur twice.</summary>
        public string[] Names
        {
            get { return Texts(Native.vo_table_reader_field_list_u16(Opened(), list)); }
        }

        public int FieldCount
        {
            get { return checked((int)Native.vo_table_reader_field_count(Opened())); }
        }

        /// <summary>The index of the first field of this name; -1 when there is none.</summary>
        public int IndexOf(string field)
        {
            Native.CheckText(field, "field");
            return Native.vo_table_reader_field_num_u16(Opened(), field);
        }

        public FieldType TypeOf(int field)
        {
            CheckIndex(field, FieldCount, "field");
            return (FieldType)Native.vo_table_reader_field_type(Opened(), (ulong)field);
        }

        // ---- values ----

        /// <summary>The number of rows.</summary>
        public long Count
        {
            get { return checked((long)Native.vo_table_reader_count(Opened())); }
        }

        /// <summary>The values of a field in row order; empty where there is none.</summary>
        public string[] Column(int field)
        {
            CheckIndex(field, FieldCount, "field");
            return Texts(Native.vo_table_reader_column_u16(Opened(), (ulong)field, list));
        }

        public string[] Column(string field)
        {
            return Column(KnownField(field));
        }

        /// <summary>A row as it stands; rows of some formats have fewer or more values than fields.</summary>
        public string[] Row(long row)
        {
            CheckIndex(row, Count, "row");
            return Texts(Native.vo_table_reader_row_u16(Opened(), (ulong)row, list));
        }

        /// <summary>One value; empty where there is none.</summary>
        public string Value(string field, long row)
        {
            int index = KnownField(field);
            CheckIndex(row, Count, "row");
            return Texts(Native.vo_table_reader_value_index_u16(Opened(), (ulong)index, (ulong)row, list))[0];
        }

        /// <summary>The values of a field in all rows that have the wanted values, compared exactly.</summary>
        public string[] Find(string field, params Condition[] conditions)
        {
            KnownField(field);
            var columns = new ulong[conditions.Length];
            var values = new string[conditions.Length];
            for (int i = 0; i < conditions.Length; ++i)
            {
                Native.CheckText(conditions[i].Value, "a wanted value");
                columns[i] = (ulong)KnownField(conditions[i].Field);
                values[i] = conditions[i].Value;
            }
            return Texts(Native.vo_table_reader_search_u16(Opened(), field, columns, values,
                                                           (ulong)conditions.Length, list));
        }

        /// <summary>The lines that the last read rejected; the source is read once more for their text, which
        /// is empty where the source has changed since.</summary>
        public List<RejectedLine> Rejected()
        {
            ulong count = Native.vo_table_reader_error_count(Opened());
            var lines = new List<RejectedLine>();
            if (count == 0) return lines;
            string[] texts = Native.vo_table_reader_rejected_u16(reader, count, list)
                ? Native.TextsOf(list) : new string[0];
            for (ulong i = 0; i < count; ++i)
            {
                string text = i < (ulong)texts.Length ? texts[i] : "";
                lines.Add(new RejectedLine(Native.vo_table_reader_error_string(reader, i), text));
            }
            return lines;
        }

        private ReaderHandle Opened()
        {
            if (reader.IsClosed) throw new ObjectDisposedException("Table " + Path);
            return reader;
        }

        // WHY a new reader for each read: in some formats the limit of a preview stays for later reads.
        private ReaderHandle ReaderForARead()
        {
            Opened();
            if (!isNew)
            {
                reader.Dispose();
                reader = Native.vo_table_reader_open(options);
            }
            isNew = false;
            return reader;
        }

        private int KnownField(string field)
        {
            int index = IndexOf(field);
            if (index >= 0) return index;
            throw new ArgumentException(Path + " has no field \"" + field + "\"; it has "
                                        + string.Join(", ", Names));
        }

        private void CheckIndex(long index, long count, string what)
        {
            if (index < 0 || index >= count)
                throw new ArgumentOutOfRangeException(what, Path + " has no " + what + " " + index
                                                      + "; it has " + count);
        }

        private void Check(bool done)
        {
            if (!done) throw new TableException(Path + ": the library refused; is memory short?");
        }

        private void CheckRead(bool done)
        {
            if (done)
            {
                CheckWhole();
                return;
            }
            if (!File.Exists(Path) && !Directory.Exists(Path))
                throw new FileNotFoundException("there is no file " + Path, Path);
            throw new TableException(Path + " cannot be read as a table: check the file type, the header's "
                + "position and the table's name; see `vok_table doctor` for what the file or this machine lacks");
        }

        private void CheckWhole()
        {
            if (!Native.vo_table_reader_is_whole(Opened()))
                throw new TableException(Path + " could not be read to its end: the disk or the network failed");
        }

        private string[] Texts(bool done)
        {
            Check(done);
            return Native.TextsOf(list);
        }
    }

    /// <summary>A column of a table to write. All but the name matter to DBF alone.</summary>
    public sealed class Field
    {
        public readonly string Name;
        public readonly FieldType Type;
        /// <summary>In bytes of the file's code page, 1 to 254.</summary>
        public readonly int Width;
        public readonly int Decimals;

        public Field(string name, FieldType type = FieldType.Text, int width = 0, int decimals = 0)
        {
            Name = name;
            Type = type;
            Width = width;
            Decimals = decimals;
        }
    }

    /// <summary>A table being written; Dispose finishes the file. The extension of the path selects the format:
    /// .xlsx and .xls make a workbook, .dbf a dBASE III table, everything else delimited text in Windows-1251.
    /// A disk that is full is not reported by the library: look at the file where that matters.</summary>
    public sealed class TableWriter : IDisposable
    {
        private readonly WriterHandle writer;
        private readonly string path;
        private readonly int fieldCount;

        public TableWriter(string path, IEnumerable<Field> fields, string delimiter = ";")
        {
            Native.CheckText(path, "path");
            Native.CheckText(delimiter, "delimiter");
            this.path = path;
            string folder = System.IO.Path.GetDirectoryName(System.IO.Path.GetFullPath(path));
            if (folder == null || !Directory.Exists(folder))
                throw new TableException("cannot write " + path + ": there is no folder " + folder);
            using (WriterOptionsHandle options = Native.vo_table_writer_options_create_u16(path))
            {
                if (options.IsInvalid) throw new OutOfMemoryException();
                if (!Native.vo_table_writer_options_set_delimiter_u16(options, delimiter))
                    throw new OutOfMemoryException();
                foreach (Field field in fields)
                {
                    Native.CheckText(field.Name, "a field's name");
                    if (!Native.vo_table_writer_options_add_field_u16(options, field.Name, (int)field.Type,
                                                                      field.Width, field.Decimals))
                        throw new ArgumentException("the field \"" + field.Name
                                                    + "\" has a type, a width or decimals out of range");
                    ++fieldCount;
                }
                writer = Native.vo_table_writer_open(options);
            }
            if (writer.IsInvalid) throw new TableException("cannot write " + path);
        }

        /// <summary>Appends a row: a value for each field.</summary>
        public void AddRow(params string[] values)
        {
            if (writer.IsClosed) throw new ObjectDisposedException("TableWriter " + path);
            if (values.Length != fieldCount)
                throw new ArgumentException("a row of " + values.Length + " values for " + fieldCount + " fields");
            foreach (string value in values)
                if (value != null) Native.CheckText(value, "a value");
            if (!Native.vo_table_writer_add_row_u16(writer, values, (ulong)values.Length))
                throw new TableException(path + ": a row was not taken");
        }

        /// <summary>Finishes the file.</summary>
        public void Dispose()
        {
            writer.Dispose();
        }
    }

    /// <summary>Settings of the library for the whole process.</summary>
    public static class Library
    {
        /// <summary>Tells the folder that holds vok_xls2csv.exe, the program that reads workbooks. Not needed
        /// when it lies beside the program.</summary>
        public static void SetConverterFolder(string folder)
        {
            Native.CheckText(folder, "folder");
            Native.converterIsKnown = true;
            Native.vo_options_set_main_module_path_u16(System.IO.Path.Combine(folder, "host"));
        }
    }

    // ---- the C interface ----

    internal abstract class LibraryHandle : SafeHandle
    {
        protected LibraryHandle() : base(IntPtr.Zero, true) { }

        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }
    }

    internal sealed class TextListHandle : LibraryHandle
    {
        protected override bool ReleaseHandle()
        {
            Native.vo_text_list_close(handle);
            return true;
        }
    }

    internal sealed class OptionsHandle : LibraryHandle
    {
        protected override bool ReleaseHandle()
        {
            Native.vo_table_reader_options_close(handle);
            return true;
        }
    }

    internal sealed class ReaderHandle : LibraryHandle
    {
        protected override bool ReleaseHandle()
        {
            Native.vo_table_reader_close(handle);
            return true;
        }
    }

    internal sealed class WriterOptionsHandle : LibraryHandle
    {
        protected override bool ReleaseHandle()
        {
            Native.vo_table_writer_options_close(handle);
            return true;
        }
    }

    internal sealed class WriterHandle : LibraryHandle
    {
        protected override bool ReleaseHandle()
        {
            Native.vo_table_writer_close(handle);
            return true;
        }
    }

    internal static class Native
    {
        private const string Dll = "vok_table_rw_vc";
        private const CallingConvention C = CallingConvention.Cdecl;
        internal static volatile bool converterIsKnown;

        internal static void CheckText(string text, string what)
        {
            if (text == null) throw new ArgumentNullException(what);
            if (text.IndexOf('\0') >= 0) throw new ArgumentException(what + " holds a NUL character");
        }

        internal static TextListHandle NewList()
        {
            TextListHandle list = vo_text_list_create();
            if (list.IsInvalid) throw new OutOfMemoryException();
            return list;
        }

        internal static string[] TextsOf(TextListHandle list)
        {
            var texts = new string[checked((int)vo_text_list_count(list))];
            if (texts.Length == 0) return texts;
            IntPtr offsets = vo_text_list_offsets(list);
            long data = vo_text_list_data_u16(list).ToInt64();
            long start = 0;
            for (int i = 0; i < texts.Length; ++i)
            {
                long end = Marshal.ReadInt64(new IntPtr(offsets.ToInt64() + 8L * (i + 1)));
                texts[i] = Marshal.PtrToStringUni(new IntPtr(data + 2 * start), checked((int)(end - start - 1)));
                start = end;
            }
            GC.KeepAlive(list); // its memory was read behind the collector's back
            return texts;
        }

        // The main module of a managed program may be its runtime, whose folder does not hold the converter.
        internal static void FindConverter()
        {
            if (converterIsKnown) return;
            converterIsKnown = true;
            string folder = AppDomain.CurrentDomain.BaseDirectory;
            if (File.Exists(System.IO.Path.Combine(folder, "vok_xls2csv.exe"))) Library.SetConverterFolder(folder);
        }

        [DllImport(Dll, CallingConvention = C)]
        internal static extern TextListHandle vo_text_list_create();
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_text_list_close(IntPtr list);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern ulong vo_text_list_count(TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern IntPtr vo_text_list_offsets(TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern IntPtr vo_text_list_data_u16(TextListHandle list);

        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_options_set_main_module_path_u16(
            [MarshalAs(UnmanagedType.LPWStr)] string path);

        [DllImport(Dll, CallingConvention = C)]
        internal static extern OptionsHandle vo_table_reader_options_create_u16(
            [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_reader_options_close(IntPtr options);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_reader_options_set_header_position(OptionsHandle options, int position);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_reader_options_set_data_position(OptionsHandle options, ulong position);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_reader_options_set_direction(OptionsHandle options, int direction);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_reader_options_set_encoding(OptionsHandle options, int encoding);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_options_set_any_file_type(OptionsHandle options, int type);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_options_set_delimiter_u16(
            OptionsHandle options, [MarshalAs(UnmanagedType.LPWStr)] string delimiter);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_options_set_quote_u16(
            OptionsHandle options, [MarshalAs(UnmanagedType.LPWStr)] string quote);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_options_set_table_u16(
            OptionsHandle options, [MarshalAs(UnmanagedType.LPWStr)] string name);

        [DllImport(Dll, CallingConvention = C)]
        internal static extern ReaderHandle vo_table_reader_open(OptionsHandle options);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_reader_close(IntPtr reader);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_read(ReaderHandle reader);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_read_only_headers(ReaderHandle reader);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_read_demo(ReaderHandle reader, int rows);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_table_list_u16(ReaderHandle reader, TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_field_list_u16(ReaderHandle reader, TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern int vo_table_reader_field_num_u16(
            ReaderHandle reader, [MarshalAs(UnmanagedType.LPWStr)] string name);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern ulong vo_table_reader_field_count(ReaderHandle reader);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_is_whole(ReaderHandle reader);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern int vo_table_reader_field_type(ReaderHandle reader, ulong index);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern ulong vo_table_reader_count(ReaderHandle reader);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_value_index_u16(ReaderHandle reader, ulong index, ulong row,
                                                                    TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_row_u16(ReaderHandle reader, ulong row, TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_column_u16(ReaderHandle reader, ulong index,
                                                               TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_search_u16(
            ReaderHandle reader, [MarshalAs(UnmanagedType.LPWStr)] string result, ulong[] columns,
            [MarshalAs(UnmanagedType.LPArray, ArraySubType = UnmanagedType.LPWStr)] string[] values, ulong count,
            TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_reader_rejected_u16(ReaderHandle reader, ulong most,
                                                                 TextListHandle list);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern ulong vo_table_reader_error_count(ReaderHandle reader);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern ulong vo_table_reader_error_string(ReaderHandle reader, ulong i);

        [DllImport(Dll, CallingConvention = C)]
        internal static extern WriterOptionsHandle vo_table_writer_options_create_u16(
            [MarshalAs(UnmanagedType.LPWStr)] string path);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_writer_options_close(IntPtr options);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_writer_options_set_delimiter_u16(
            WriterOptionsHandle options, [MarshalAs(UnmanagedType.LPWStr)] string delimiter);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_writer_options_add_field_u16(
            WriterOptionsHandle options, [MarshalAs(UnmanagedType.LPWStr)] string name, int type, int width,
            int decimals);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern WriterHandle vo_table_writer_open(WriterOptionsHandle options);
        [DllImport(Dll, CallingConvention = C)]
        [return: MarshalAs(UnmanagedType.I1)]
        internal static extern bool vo_table_writer_add_row_u16(
            WriterHandle writer,
            [MarshalAs(UnmanagedType.LPArray, ArraySubType = UnmanagedType.LPWStr)] string[] values, ulong count);
        [DllImport(Dll, CallingConvention = C)]
        internal static extern void vo_table_writer_close(IntPtr writer);
    }
}
