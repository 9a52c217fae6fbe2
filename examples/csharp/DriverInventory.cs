// The driver inventory of a Windows machine, through driverinventory.dll.
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using System.Text;

namespace Orvane
{
    /// <summary>A call that failed.</summary>
    public sealed class DriverInventoryException : Exception
    {
        public DriverInventoryException(int status, string sentence) : base(sentence)
        {
            Status = status;
        }

        public int Status { get; private set; }
    }

    /// <summary>The documents that the library writes.</summary>
    public enum Document
    {
        Json = 1,
        JsonLines = 2,
        Snapshot = 3
    }

    /// <summary>A handle of the library; released with the last use, also when nobody disposes of it.</summary>
    public sealed class InventoryHandle : SafeHandle
    {
        public InventoryHandle() : base(IntPtr.Zero, true)
        {
        }

        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        protected override bool ReleaseHandle()
        {
            return Native.driverinventory_release(handle) == Native.Ok;
        }
    }

    /// <summary>The declarations of driverinventory.h, as far as they are used.</summary>
    internal static class Native
    {
        internal const int Ok = 0;
        internal const int Absent = 1;
        private const string Library = "driverinventory";
        private const CallingConvention C = CallingConvention.Cdecl;

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_collect(IntPtr options, out InventoryHandle inventory);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_open(byte[] path, out InventoryHandle inventory);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_release(IntPtr inventory);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_count(InventoryHandle inventory, out UIntPtr count);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_find_member(byte[] name);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_text(InventoryHandle inventory, UIntPtr record, int member,
            out IntPtr text, out UIntPtr length);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_number(InventoryHandle inventory, UIntPtr record, int member,
            out ulong number);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_document(InventoryHandle inventory, int document, out IntPtr text,
            out UIntPtr length);

        [DllImport(Library, CallingConvention = C)]
        internal static extern int driverinventory_free(IntPtr text);

        [DllImport(Library, CallingConvention = C)]
        internal static extern IntPtr driverinventory_error();

        internal static byte[] Utf8(string text)
        {
            return Encoding.UTF8.GetBytes(text + "\0");
        }

        internal static string TextAt(IntPtr text, int length)
        {
            var bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        /// <summary>Whether there is a value.</summary>
        internal static bool HasValue(int status)
        {
            if (status == Ok || status == Absent) return status == Ok;
            IntPtr sentence = driverinventory_error();
            int length = 0;
            while (Marshal.ReadByte(sentence, length) != 0) ++length;
            throw new DriverInventoryException(status, TextAt(sentence, length));
        }
    }

    /// <summary>A finished inventory.</summary>
    public sealed class Inventory : IDisposable
    {
        private readonly InventoryHandle handle;

        private Inventory(InventoryHandle handle)
        {
            this.handle = handle;
        }

        /// <summary>Of this machine.</summary>
        public static Inventory Collect()
        {
            InventoryHandle handle;
            Native.HasValue(Native.driverinventory_collect(IntPtr.Zero, out handle));
            return new Inventory(handle);
        }

        /// <summary>Of the snapshot in a file.</summary>
        public static Inventory Open(string path)
        {
            InventoryHandle handle;
            Native.HasValue(Native.driverinventory_open(Native.Utf8(path), out handle));
            return new Inventory(handle);
        }

        public int Count
        {
            get
            {
                UIntPtr count;
                Native.HasValue(Native.driverinventory_count(handle, out count));
                return checked((int)count);
            }
        }

        /// <summary>A text of a record; null when it is unknown.</summary>
        public string Text(int record, string member)
        {
            IntPtr text;
            UIntPtr length;
            int number = Native.driverinventory_find_member(Native.Utf8(member));
            bool has = Native.HasValue(Native.driverinventory_text(handle, (UIntPtr)record, number, out text, out length));
            return has ? Native.TextAt(text, checked((int)length)) : null;
        }

        /// <summary>A number of a record; null when it is unknown.</summary>
        public ulong? Number(int record, string member)
        {
            ulong value;
            int number = Native.driverinventory_find_member(Native.Utf8(member));
            bool has = Native.HasValue(Native.driverinventory_number(handle, (UIntPtr)record, number, out value));
            return has ? value : (ulong?)null;
        }

        /// <summary>The whole inventory as a document.</summary>
        public string ToDocument(Document document)
        {
            IntPtr text;
            UIntPtr length;
            Native.HasValue(Native.driverinventory_document(handle, (int)document, out text, out length));
            try
            {
                return Native.TextAt(text, checked((int)length));
            }
            finally
            {
                Native.driverinventory_free(text);
            }
        }

        public void Dispose()
        {
            handle.Dispose();
        }
    }
}
